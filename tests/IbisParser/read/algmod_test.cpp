// [Algorithmic Model] blocks: their lines, the end of a block, and the files beside the IBIS file.
#include "IbisParser/algmod.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "IbisParser/cmn.h"
#include "IbisParser/parse.h"
#include "tests/support/Messages.h"
#include "tests/support/TempDir.h"

typedef std::vector<std::string> Strings;

static int s_receive(std::string line, AlgModExec** head)
{
    return ALGMOD_ReceiveLine(line.data(), head);
}

static int s_new(std::string line, AlgMod** slot)
{
    return ALGMOD_New(line.data(), slot);
}

GTEST_TEST(Algmod, KeywordLine)
{
    Messages messages;
    AlgMod* record = nullptr;
    EXPECT_EQ(s_new("[Algorithmic Model]", &record), 1);
    EXPECT_EQ(messages.Take(), Strings());
    s_receive("Executable a_b_32 c d.ami", &record->execs);
    EXPECT_EQ(s_new("[Algorithmic Model] two items", &record), 1);
    EXPECT_EQ(record->execs, nullptr) << "the old record is replaced";
    EXPECT_EQ(
        messages.Take(),
        (Strings{"4601 Algorithmic Model: Already Defined for this model",
                 "4605 Incorrect Number of Line Items (3) For Algorithmic Model: Expecting 1"}));
    s_new("[Algorithmic Model", &record);
    EXPECT_EQ(messages.TakeNumbers(), "4601 4603");
    ALGMOD_Free(record);
    ALGMOD_Free(nullptr);
}

GTEST_TEST(Algmod, ExecutableLines)
{
    const std::string n44(44, 'n');
    const std::string n45(45, 'n');
    const struct {
        std::string line;
        bool kept;
        std::string platform, compiler;
        int bits;
        Strings messages;
    } rows[] = {
        {"Executable Linux_gcc4.1_64 a.so a.ami", true, "Linux", "gcc4.1", 64, {}},
        {"Executable\tWindows_VisualStudio7.1.3088_32  a.dll\ta.ami ",
         true,
         "Windows",
         "VisualStudio7.1.3088",
         32,
         {}},
        {"Executable a_b_64 a.so",
         false,
         "",
         "",
         0,
         {"4605 Incorrect Number of Line Items (3) For Algorithmic Model: Expecting 4"}},
        {"Executable a_b_64 a.so a.ami more",
         false,
         "",
         "",
         0,
         {"4605 Incorrect Number of Line Items (5) For Algorithmic Model: Expecting 4"}},
        {"executable a_b_64 a.so a.ami",
         false,
         "",
         "",
         0,
         {"4609 Unknown Line in Algorithmic Model"}},
        {"Executable Linux_my_gcc_64 a.so a.ami",
         false,
         "",
         "",
         0,
         {"4610 Could not parse Platform, Compiler, Bits  for [Algorithmic Model] Executable "
          "Sub-parameter"}},
        {"Executable " + n44 + "_" + n44 + "_32 " + n44 + " " + n44, true, n44, n44, 32, {}},
        {"Executable " + n45 + "_c" + n45 + "_32 " + n45 + " " + n45,
         true,
         n44,
         "c" + n44.substr(1),
         32,
         {"4611 Platform name too long " + n45, "4612 Compiler name too long c" + n45,
          "4614 Filename too long " + n45, "4614 Filename too long " + n45}},
        {"Executable a_b_x64 a.so a.ami",
         true,
         "a",
         "b",
         -1,
         {"4613 Could not parse the Bits in a_b_x64 for [Algorithmic Model] Executable "
          "Sub-parameter"}},
        {"Executable a_b_64bit a.so a.ami",
         true,
         "a",
         "b",
         -1,
         {"4613 Could not parse the Bits in a_b_64bit for [Algorithmic Model] Executable "
          "Sub-parameter"}},
        {"Executable a_b_-32 a.so a.ami",
         true,
         "a",
         "b",
         -1,
         {"4613 Could not parse the Bits in a_b_-32 for [Algorithmic Model] Executable "
          "Sub-parameter"}},
        {"Executable a_b_4294967328 a.so a.ami", true, "a", "b", INT_MAX, {}},
        {"Executable a_b_0000000064 a.so a.ami", true, "a", "b", 64, {}},
    };
    Messages messages;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        AlgMod* record = nullptr;
        s_new("[Algorithmic Model]", &record);
        EXPECT_EQ(s_receive(row.line, &record->execs), row.kept);
        EXPECT_EQ(messages.Take(), row.messages);
        EXPECT_EQ(record->execs != nullptr, row.kept);
        if (record->execs != nullptr) {
            EXPECT_EQ(record->execs->platform, row.platform);
            EXPECT_EQ(record->execs->compiler, row.compiler);
            EXPECT_EQ(record->execs->bits, row.bits);
        }
        ALGMOD_Free(record);
    }
    for (const char* item : {"a_b", "a__64", "_b_64", "a_b_", "__", "a"}) {
        AlgModExec* head = nullptr;
        s_receive(std::string("Executable ") + item + " a.so a.ami", &head);
        EXPECT_EQ(messages.TakeNumbers(), "4610") << item;
        EXPECT_EQ(head, nullptr);
    }
}

// The list is newest first, so "later" goes backwards through the file.
GTEST_TEST(Algmod, EndOfBlock)
{
    Messages messages;
    AlgMod* record = nullptr;
    gulLineNum = 9;
    s_new("[Algorithmic Model]", &record);
    for (const char* platform : {"LINUX_gcc_64", "Linux_gcc_16", "Linux_gcc_64", "linux_GCC_64",
                                 "Linux_gccg_64", "Linuxg_cc_64", "Linux_gcc_32"})
        s_receive(std::string("Executable ") + platform + " a.so a.ami", &record->execs);
    gulLineNum = 30;
    EXPECT_EQ(messages.Take(), Strings());
    ALGMOD_Fini(record->execs);
    const std::string duplicate = "4607 Duplicate Sub-Parameter: Platform ";
    const std::string tail = " Bits 64 for Algorithmic Model defined on line 9";
    EXPECT_EQ(
        messages.Take(),
        (Strings{duplicate + "Linux Compiler gcc" + tail, duplicate + "LINUX Compiler gcc" + tail,
                 duplicate + "LINUX Compiler gcc" + tail,
                 "4606 The Number of Bits should be 32 or 64 for Platform Linux and Compiler "
                 "gcc for Algorithmic Model defined on line 9"}));
    ALGMOD_Fini(nullptr);
    ALGMOD_Free(record);
}

static const char s_legalParameters[] =
    "(r (Reserved_Parameters\n"
    "(Init_Returns_Impulse (Usage Info)(Type Boolean)(Default True)(Description \"d\"))\n"
    "(GetWave_Exists (Usage Info)(Type Boolean)(Default False)(Description \"d\"))))\n";

static std::string s_ibis(const std::string& lines)
{
    return "[IBIS Ver] 5.0\n[File Name] x.ibs\n[File Rev] 1\n[Model] tx\n[Algorithmic Model]\n" +
           lines + "[End Algorithmic Model]\n[End]\n";
}

GTEST_TEST(Algmod, FilesBesideTheIbisFile)
{
    const std::string where = " It was defined in [Algorithmic Model] for Model tx";
    const struct {
        std::string lines;
        Strings messages;
    } rows[] = {
        {"Executable Linux_gcc_64 tx.so tx.ami\n", {}},
        {"Executable Linux_gcc_64 tx.so tx.txt\n", {}},
        {"", {"4615 Empty [Algorithmic Model] defined for Model tx"}},
        {"Executable Linux_gcc_64 absent.so noperiod\n",
         {"4616 Code file absent.so not found." + where,
          "4617 AMI Parameter file noperiod should have '.ami' extension." + where}},
        {"Executable Linux_gcc_64 tx.so absent.ami\n",
         {"4618 AMI parameter file absent.ami not found." + where}},
        {"Executable Linux_gcc_64 tx.so bad.ami\n",
         {"4619 The AMI parameter file has mismatched parenthesis"}},
        {"Executable Linux_gcc_64 tx.so empty.ami\n", {}},
    };
    const TempDir dir;
    Messages messages(4600, 4699);
    dir.Write("tx.so", "");
    dir.Write("tx.ami", s_legalParameters);
    dir.Write("tx.txt", s_legalParameters);
    dir.Write("noperiod", s_legalParameters);
    dir.Write("bad.ami", "(a (b 1)");
    dir.Write("empty.ami", "| nothing\n");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.lines);
        INIT();
        PARSE(dir.Write("x.ibs", s_ibis(row.lines)).c_str(), FILE_IBS);
        const unsigned long line = PARSE_GetLineNum();
        TEST(FILE_IBS, 0);
        EXPECT_EQ(messages.Take(), row.messages);
        // Reading the other file leaves no trace.
        EXPECT_EQ(PARSE_GetLineNum(), line);
        EXPECT_STREQ(gsFileName, "x.ibs");
        EXPECT_EQ(geCurrFileType, FILE_IBS);
        EXPECT_EQ(gsFilePath_ibs, dir.Path());
        EXPECT_EQ(gsBuffer, nullptr);
        FINI();
    }
}
