// The document store and the file header.
#include "IbisParser/hdr.h"

#include <gtest/gtest.h>

#include <string>

#include "IbisParser/parse.h"
#include "tests/support/Messages.h"
#include "tests/support/TempDir.h"
#include "tests/support/aborts.h"

static int s_send(int code, std::string line)
{
    return HDR_ReceiveLine(LINE_KEYWORD, code, line.data());
}

static int s_sendData(std::string line)
{
    return HDR_ReceiveLine(LINE_DATA, KEY_NOTES, line.data());
}

static Hdr* s_header()
{
    IbisRoot* root = nullptr;
    Hdr* header = nullptr;
    if (IBIS_GetIBIS(&root)) IBIS_GetHdrs(root, &header);
    return header;
}

GTEST_TEST(Store, NewestFirst)
{
    Messages messages;
    IbisRoot* root = nullptr;
    EXPECT_EQ(IBIS_GetIBIS(&root), 0);
    EXPECT_EQ(root, nullptr);
    INIT();
    IbisRoot* first = nullptr;
    EXPECT_EQ(IBIS_GetIBIS(&first), 1);
    INIT();
    EXPECT_EQ(IBIS_GetIBIS(&root), 1);
    EXPECT_NE(root, first);
    EXPECT_EQ(root->next, first);
    Hdr* header = nullptr;
    EXPECT_EQ(IBIS_GetHdrs(root, &header), 0);
    HDR_Init();
    IBIS_GetHdrs(root, &header);
    Hdr* oldest = header;
    HDR_Init();
    EXPECT_EQ(IBIS_GetHdrs(root, &header), 1);
    EXPECT_NE(header, oldest);
    EXPECT_EQ(header->next, oldest);
    // Not only the front root can be released.
    IBIS_Free(first);
    EXPECT_EQ(root->next, nullptr);
    FINI();
    EXPECT_EQ(IBIS_GetIBIS(&root), 0);
    ERRLOG_ErrorNew(1904);
    ERRLOG_ErrorNew(1904);
    EXPECT_EQ(FINI(), 2);
}

GTEST_TEST(Store, MistakesOfTheCaller)
{
    IbisRoot root = {};
    EXPECT_ASSERTION(IBIS_GetIBIS(nullptr), "IbisParser/ibis");
    EXPECT_ASSERTION(IBIS_Free(nullptr), "IbisParser/ibis");
    EXPECT_ASSERTION(IBIS_AddHdr(&root, nullptr), "IbisParser/ibis");
    EXPECT_ASSERTION(IBIS_GetExts(&root, nullptr), "IbisParser/ibis");
    EXPECT_ASSERTION(HDR_ReceiveLine(LINE_DATA, KEY_NOTES, nullptr), "IbisParser/hdr");
    EXPECT_ASSERTION(HDR_FreeList(nullptr), "IbisParser/hdr");
}

GTEST_TEST(Header, KeepsFieldsAndTexts)
{
    const TempDir dir;
    Messages messages;
    INIT();
    PARSE(dir.Write("x.pkg",
                    R"([IBIS Ver] 3.2
[File Name] x.pkg
[File Rev] 0.9
[Source]
bench |here
  two
[Notes] one
[Disclaimer] a
[Disclaimer]
[Disclaimer] b
c
[End]
)")
              .c_str(),
          FILE_PKG);
    EXPECT_EQ(messages.TakeNumbers(), "");
    Hdr* header = s_header();
    static const struct {
        int (*get)(Hdr*, char**);
        const char* text;
    } rows[] = {
        {HDR_GetIBIS_Ver, "3.2"},       {HDR_GetFile_name, "x.pkg"},   {HDR_GetFile_Rev, "0.9"},
        {HDR_GetDate, nullptr},         {HDR_GetSource, "bench\ntwo"}, {HDR_GetNotes, "one"},
        {HDR_GetDisclaimer, "a\nb\nc"}, {HDR_GetCopyright, nullptr},
    };
    for (const auto& row : rows) {
        char* text = nullptr;
        EXPECT_EQ(row.get(header, &text), row.text != nullptr);
        EXPECT_STREQ(text, row.text);
    }
    FINI();
}

// Growing the text for each line anew would take minutes here.
GTEST_TEST(Header, LongNotes)
{
    Messages messages;
    INIT();
    HDR_Init();
    s_send(KEY_NOTES, "[Notes]");
    const std::string line(60, 'n');
    const std::size_t lines = 100000;
    for (std::size_t i = 0; i < lines; ++i)
        s_sendData(line);
    char* text = nullptr;
    HDR_GetNotes(s_header(), &text);
    EXPECT_EQ(std::string(text).size(), lines * (line.size() + 1) - 1);
    FINI();
}

// Lines and orders that the reader itself never sends.
GTEST_TEST(Header, MisusedByItsCaller)
{
    Messages messages;
    EXPECT_EQ(HDR_Init(), 0);
    EXPECT_EQ(messages.TakeNumbers(), "1000");
    EXPECT_EQ(s_send(KEY_FILE_REV, "[File Rev] 1"), 0);
    EXPECT_EQ(s_sendData("x"), 0);
    EXPECT_EQ(messages.TakeNumbers(), "1001 1002");
    INIT();
    HDR_Init();
    s_send(KEY_FILE_REV, "[File Rev] 1");
    s_send(KEY_IBIS_VER, "[IBIS Ver] 3.2");
    EXPECT_EQ(messages.TakeNumbers(), "1007");
    s_send(KEY_COMPONENT, "[Component] x");
    char line[] = "x";
    HDR_ReceiveLine(2, KEY_NOTES, line);
    EXPECT_EQ(messages.TakeNumbers(), "1003 1004");
    FINI();
    EXPECT_EQ(s_sendData("x"), 0) << "the header is gone";
    EXPECT_EQ(messages.TakeNumbers(), "1002");
}

GTEST_TEST(Header, VersionOptions)
{
    static const struct {
        bool allow1x, allowAny;
        const char* text;
        int versionClass;  // 4 stays when the text is refused
        const char* numbers;
    } rows[] = {
        {false, false, "5.0", 5, ""},       {false, false, "2.0", 2, ""},
        {false, false, "4.3", 4, "1008"},   {false, false, "3.2a", 4, "1008"},
        {false, false, "1.1", 4, "1008"},   {true, false, "1.1", 1, ""},
        {true, false, "1.anything", 1, ""}, {true, false, "7.0", 4, "1008"},
        {false, true, "7.0", 5, ""},        {true, true, "1.1", 5, ""},
        {false, true, "2.1", 5, ""},
    };
    Messages messages;
    INIT();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        HDR_Allow1xVersions(row.allow1x);
        HDR_AllowAnyVersion(row.allowAny);
        geFileVersion = 4;
        HDR_Init();
        s_send(KEY_IBIS_VER, std::string("[IBIS Ver] ") + row.text);
        EXPECT_EQ(geFileVersion, row.versionClass);
        EXPECT_EQ(messages.TakeNumbers(), row.numbers);
    }
    HDR_Allow1xVersions(0);
    HDR_AllowAnyVersion(0);
    FINI();
}

GTEST_TEST(Header, FileNameLimitsByVersionClass)
{
    static const struct {
        int versionClass;
        std::size_t limit;
    } rows[] = {{1, 12}, {2, 12}, {3, 24}, {4, 44}, {5, 44}};
    Messages messages(1914, 1914);
    INIT();
    for (const auto& row : rows) {
        for (const std::size_t length : {row.limit, row.limit + 1}) {
            geFileVersion = row.versionClass;
            HDR_Init();
            s_send(KEY_FILE_NAME, "[File Name] " + std::string(length - 4, 'x') + ".ibs");
            EXPECT_EQ(messages.TakeNumbers(), length > row.limit ? "1914" : "");
            EXPECT_EQ(std::string(s_header()->fileName).size(), length) << "kept whole";
        }
    }
    FINI();
}

GTEST_TEST(Header, AnyFileName)
{
    Messages messages;
    INIT();
    geFileVersion = 3;
    HDR_AllowAnyFile_name(1);
    HDR_Init();
    s_send(KEY_FILE_NAME, "[File Name] A+B");
    EXPECT_EQ(messages.TakeNumbers(), "");
    HDR_Init();
    s_send(KEY_FILE_NAME, "[File Name] Power");
    EXPECT_EQ(messages.TakeNumbers(), "1916");
    HDR_AllowAnyFile_name(0);
    FINI();
}
