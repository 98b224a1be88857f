// How files come before the reader: names, versions, a process of their own.
#include <gtest/gtest.h>
#include <signal.h>

#include "quell/base/errors.h"
#include "quell/base/file_pointer.h"
#include "quell/reader/file_types.h"
#include "quell/reader/read_in_child.h"
#include "quell/reader/version.h"
#include "tests/quell/command.h"
#include "tests/support/TempDir.h"

namespace quell {
namespace {

GTEST_TEST(Reader, VersionsAfterTheLastKnownOne)
{
    for (const char* version : {"5.1", "5.12", "6.0", "7.2", "9.9"})
        EXPECT_TRUE(BeyondKnown(version)) << version;
    for (const char* version : {"5.0", "5.00", "4.2", "3.3", "1.1", "", "5", "33.0", "7.x", "7."})
        EXPECT_FALSE(BeyondKnown(version)) << version;
}

GTEST_TEST(Reader, VersionIsReplacedInPlace)
{
    static const struct {
        const char* text;
        const char* replaced;  // null: no version found
    } rows[] = {
        {"| [IBIS Ver] 1\n\n[IBIS Ver]\t7.1 | note\r\n[File Name] x\n",
         "| [IBIS Ver] 1\n\n[IBIS Ver]\t5.0 | note\r\n[File Name] x\n"},
        {"  [ibis_VER]6.0", "  [ibis_VER]5.0"},
        {"[IBIS Ver]\n[IBIS Ver] 7.1\n", nullptr},
        {"[File Name] x\n[IBIS Ver] 7.1\n", nullptr},
        {"", nullptr},
    };
    const TempDir scratch;
    for (const auto& row : rows) {
        const FilePointer from = OpenFile(scratch.Write("from", row.text), "rb");
        const auto place = FindVersion(from.get());
        EXPECT_EQ(place.has_value(), row.replaced != nullptr) << row.text;
        if (place && row.replaced != nullptr) {
            FilePointer to = OpenFile(scratch.Path("to"), "wb");
            EXPECT_TRUE(CopyWithVersion(from.get(), to.get(), *place, "5.0"));
            to.reset();
            EXPECT_EQ(ReadFile(scratch.Path("to")), row.replaced);
        }
    }
}

GTEST_TEST(Reader, NamesThatTheReaderTakes)
{
    static const struct {
        const char* name;
        FileType type;
        const char* legal;
    } rows[] = {
        {"a.ibs", FILE_IBS, "a.ibs"},     {"A.IBS", FILE_IBS, "A.IBS"},
        {"a.txt", FILE_IBS, "a.ibs"},     {"a", FILE_PKG, "a.pkg"},
        {"a.ibs.old", FILE_IBS, "a.ibs"}, {"a.ibs", FILE_AMI, "a.ami"},
        {".ibs", FILE_EBD, "file.ebd"},   {"a.v2.txt", FILE_IBS, "a.v2.ibs"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(LegalName(row.name, row.type), row.legal) << row.name;
    const OwnNames own("folder/a.txt", FILE_IBS);
    for (const char* name : {"", "a.txt", "a.ibs"})
        EXPECT_TRUE(own.Has(name)) << name;
    EXPECT_FALSE(own.Has("a.pkg"));
    EXPECT_EQ(FolderOf("/a/b/c.ibs"), "/a/b/");
    EXPECT_EQ(FolderOf("c.ibs"), "");
}

GTEST_TEST(Reader, FilesAreLookedAtBeforeTheyAreRead)
{
    const TempDir scratch;
    const std::string text = "[IBIS Ver] 7.1\n";
    const struct {
        std::string path;
        FileType type;
        const char* readAs;  // null: as it is
        bool otherName;
    } rows[] = {
        {scratch.Write("plain.ibs", "[IBIS Ver] 4.2\n"), FILE_IBS, nullptr, false},
        {scratch.Write("plain.txt", "[IBIS Ver] 4.2\n"), FILE_IBS, nullptr, true},
        {scratch.Write("later.ibs", text), FILE_IBS, "5.0", true},
        {scratch.Write("later.ami", text), FILE_AMI, nullptr, false},
    };
    for (const auto& row : rows) {
        const FileToRead file = FindFileToRead(row.path, row.type);
        EXPECT_EQ(file.opening.version, row.readAs == nullptr ? "" : row.readAs) << row.path;
        EXPECT_EQ(file.laterVersion, row.readAs == nullptr ? "" : "7.1") << row.path;
        EXPECT_EQ(!file.opening.folder.empty(), row.otherName) << row.path;
        EXPECT_EQ(file.size, text.size()) << row.path;
    }
    EXPECT_THROW(FindFileToRead(scratch.Path("missing.ibs"), FILE_IBS), InputError);
}

// Its frames come back, and whatever ends it is thrown here.
GTEST_TEST(Reader, WorkInAChildSpeaksBack)
{
    const TempDir scratch;
    const FileToRead file = FindFileToRead(scratch.Write("a.ibs", ""), FILE_IBS);
    const struct {
        ReadWork end;
        int exitCode;
        std::string error;
    } rows[] = {
        {[](const Opening&, FrameWriter&) { return 1; }, EXIT_DONE, ""},
        {[](const Opening& opening, FrameWriter&) -> int {
             throw InputError(opening.name, 7, "no such thing");
         },
         EXIT_BAD_INPUT, file.opening.name + ":7: no such thing"},
        {[](const Opening&, FrameWriter&) { return raise(SIGSEGV); }, EXIT_READER_FAILED,
         file.opening.name + ": the reader stopped: SIGSEGV"},
    };
    for (const auto& row : rows) {
        std::string told;
        int exitCode = EXIT_DONE;
        std::string error;
        try {
            ReadInChild(
                file,
                [&row](const Opening& opening, FrameWriter& writer) {
                    writer.Send(3, "told");
                    return row.end(opening, writer);
                },
                [&told](FrameFields frame) {
                    told += std::to_string(frame.Number()) + ' ';
                    told += frame.Text();
                });
        } catch (const CommandError& thrown) {
            exitCode = thrown.Code();
            error = thrown.what();
        }
        EXPECT_EQ(told, "3 told") << row.error;
        EXPECT_EQ(exitCode, row.exitCode) << row.error;
        EXPECT_EQ(error, row.error);
    }
}

}  // namespace
}  // namespace quell
