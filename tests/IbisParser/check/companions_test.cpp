// Files that a file names, read in the middle of its checks.
#include <gtest/gtest.h>

#include <string>

#include "IbisParser/cmpnt.h"
#include "IbisParser/parse.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"

// Reading a package file in the middle of the checks leaves no trace in the state of the reader.
GTEST_TEST(Companions, PackageFileLeavesNoTrace)
{
    const TempDir folder;
    const std::string name = folder.Write("package.ibs",
                                          R"([IBIS Ver] 2.1
[File Name] package.ibs
[File Rev] 1
[Component] One
[Package Model] My Package
[Pin] signal_name model_name
1 A NC
[End]
)");
    folder.Write("my_package.pkg",
                 R"([IBIS Ver] 4.2
[Comment Char] #_char
[File Name] my_package.pkg
[File Rev] 1
[Define Package Model] My Package
[Pin Numbers]
1
)");
    LogCapture log;
    gbSuppressBanners = 1;
    ASSERT_EQ(INIT(), 1);
    ASSERT_EQ(PARSE(name.c_str(), FILE_IBS), 1);
    IbisRoot* root = nullptr;
    IBIS_GetIBIS(&root);
    log.Take();
    EXPECT_EQ(CMPNT_TestPkgMdl(root->cmpnts), 1);
    // The package file has no end and lacks keywords: it was read.
    EXPECT_NE(log.Take().find("E0903 (line    7)"), std::string::npos);
    EXPECT_EQ(gulLineNum, 8u);
    EXPECT_STREQ(gsFileName, "package.ibs");
    EXPECT_EQ(gsFilePath_ibs, folder.Path());
    EXPECT_EQ(geFileVersion, 2);
    EXPECT_EQ(geCurrFileType, FILE_IBS);
    EXPECT_EQ(gpcComment, '|');
    IbisRoot* after = nullptr;
    EXPECT_EQ(IBIS_GetIBIS(&after), 1);
    EXPECT_EQ(after, root);
    EXPECT_EQ(root->pkgMdls, nullptr);
    FINI();
}
