// Common helpers: strings, scans, splitting, setters.
#include "IbisParser/cmn.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "IbisParser/parse.h"
#include "tests/support/LogCapture.h"
#include "tests/support/aborts.h"

static std::vector<std::string> Tokens(const CmnArgs& args)
{
    return {args.argv, args.argv + args.nStored};
}

GTEST_TEST(Cmn, Splitting)
{
    static const struct {
        const char* label;
        const char* line;
        int maxArgs;
        char sep;
        std::vector<std::string> stored;
        int argc;
    } rows[] = {
        {"separators are tokens", "a,b c", 4, ',', {"a", ",", "b", "c"}, 4},
        {"no room for all", "a b c", 2, '\0', {"a", "b"}, 3},
        {"nothing", " \t ", 3, '\0', {}, 0},
        {"doubled separators", "==x", 4, '=', {"=", "=", "x"}, 3},
        {"blanks around", "\t x  = 1 \n", 4, '=', {"x", "=", "1"}, 3},
        {"only blank and tab end a token", "a\vb", 4, '\0', {"a\vb"}, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        CmnArgs args;
        ASSERT_EQ(CMN_ArgParsePlus(row.line, row.maxArgs, row.sep, &args), 1);
        EXPECT_EQ(Tokens(args), row.stored);
        EXPECT_EQ(args.argc, row.argc);
        EXPECT_EQ(args.maxArgs, row.maxArgs);
        for (int i = args.argc; i < row.maxArgs; ++i)
            EXPECT_EQ(args.argv[i], nullptr);
        CMN_ArgFree(&args);
        EXPECT_EQ(args.argv, nullptr);
    }
    CmnArgs counted;
    EXPECT_EQ(CMN_ArgParse("a b", 0, &counted), 1);
    EXPECT_EQ(counted.argc, 2);
    EXPECT_EQ(counted.argv, nullptr);
}

GTEST_TEST(Cmn, Comparing)
{
    static const struct {
        const char *a, *b;
        int same, sameThree;
    } rows[] = {
        {"Pin", "PIN", 1, 1}, {"", "", 1, 1},         {"Pin", "Pins", 0, 1}, {"Pins", "Pin", 0, 1},
        {"pi", "pi", 1, 1},   {"Abc1", "aBC2", 0, 1}, {"a[", "a{", 0, 0},    {"\xe4", "\xc4", 0, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CMN_StrSameIC(row.a, row.b), row.same) << row.a << row.b;
        EXPECT_EQ(CMN_StrSameICn(row.a, row.b, 3), row.sameThree) << row.a << row.b;
    }
    char keyword[] = "Model Spec";
    EXPECT_EQ(CMN_MatchKeyword("MODEL_SPEC", keyword), 1);
    EXPECT_STREQ(keyword, "Model_Spec");
    char other[] = "a b c";
    EXPECT_EQ(CMN_MatchKeyword("A_B", other), 0);
    EXPECT_STREQ(other, "a_b_c");
}

GTEST_TEST(Cmn, StringsInPlace)
{
    char text[] = "  mixed Case \t\r\n";
    CMN_TerminateEnd(text);
    EXPECT_STREQ(text, "  mixed Case");
    char blanks[] = " \v\f ";
    CMN_TerminateEnd(blanks);
    EXPECT_STREQ(blanks, "");
    CMN_ConvertToUpper(text);
    EXPECT_STREQ(text, "  MIXED CASE");
    EXPECT_EQ(CMN_AnyUpper(text), 1);
    CMN_ConvertToLower(text);
    EXPECT_EQ(CMN_AnyUpper(text), 0);

    char fixed[6] = "zzzzz";
    CMN_strncpy(fixed, "abcdefgh", 5);
    EXPECT_STREQ(fixed, "abcde");
    char* part = CMN_StrMakeN("abc", 2);
    EXPECT_STREQ(part, "ab");
    CMN_free(part);
    char* padded = CMN_StrMakeN("abc", 6);
    EXPECT_EQ(std::memcmp(padded, "abc\0\0\0", 7), 0);
    CMN_free(padded);
    EXPECT_EQ(CMN_StrMake(nullptr), nullptr);

    char path[] = "a/b/c.ibs";
    EXPECT_STREQ(CMN_getBasename(path), "c.ibs");
    char bare[] = "c.ibs";
    EXPECT_STREQ(CMN_getBasename(bare), "c.ibs");
    EXPECT_STREQ(CMN_ultoa(18446744073709551615ul), "18446744073709551615");
}

GTEST_TEST(Cmn, KeywordsAreSteppedOver)
{
    static const struct {
        const char* line;
        int found;
        const char* rest;
    } rows[] = {{"[Pin]  a b", 1, "a b"}, {"[Pin]", 1, ""}, {"[Pin  x", 0, ""}, {"]x]", 1, "x]"}};
    for (const auto& row : rows) {
        std::string line = row.line;
        char* at = line.data();
        EXPECT_EQ(CMN_EatKeyword(&at), row.found) << row.line;
        EXPECT_STREQ(at, row.rest);
    }
}

GTEST_TEST(Cmn, ReservedWords)
{
    LogCapture log;
    gulLineNum = 3;
    EXPECT_EQ(CMN_ReservedWord("nc"), 0);
    EXPECT_EQ(CMN_ReservedWord(""), 1);
    EXPECT_EQ(CMN_ReservedWord("GNDX"), 1);
    EXPECT_EQ(CMN_ReservedWordErr("CircuitCall"), 0);
    EXPECT_EQ(log.Take(), "E1916 (line    3) - Illegal use of Reserved Word 'CircuitCall'.\n");
    std::strcpy(gsFileName, "x.ibs");
    CMN_TestRequiredKeyword("Pin", 1);
    CMN_TestRequiredKeyword("Pin", 0);
    EXPECT_EQ(log.Take(), "E1915 - Required keyword 'Pin' not found in file 'x.ibs'.\n");
}

// A guarded scan passes 120 characters; with any line length allowed, all.
GTEST_TEST(Cmn, ScansPass120Characters)
{
    static const struct {
        const char* label;
        void (*scan)(char**);
        char filler;
    } rows[] = {
        {"white space", CMN_EatWhitespace, '\t'},
        {"other", CMN_EatNonWhitespace, 'x'},
        {"keyword", [](char** p) { CMN_EatKeyword(p); }, '['},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        std::string fits(120, row.filler);
        char* at = fits.data();
        row.scan(&at);
        EXPECT_EQ(at, fits.data() + 120);
        std::string tooLong(121, row.filler);
        gbAllowAnyLineLength = 1;
        at = tooLong.data();
        row.scan(&at);
        EXPECT_EQ(at, tooLong.data() + 121);
        gbAllowAnyLineLength = 0;
        at = tooLong.data();
        EXPECT_ASSERTION(row.scan(&at), "IbisParser/cmn");
    }
}

GTEST_TEST(Cmn, NullArgumentsAbort)
{
    static char text[] = "text";
    static double value = 0.0;
    static CmnArgs empty = {0, 0, 0, nullptr};
    static FILE* file = nullptr;
    static void* null = nullptr;
    static const struct {
        const char* label;
        void (*call)();
    } rows[] = {
        {"malloc of nothing", [] { (void)!CMN_malloc(&null, 0); }},
        {"realloc of nothing", [] { (void)!CMN_realloc(&null, 0); }},
        {"malloc to nowhere", [] { (void)!CMN_malloc(nullptr, 1); }},
        {"free", [] { CMN_free(nullptr); }},
        {"freeSetNull", [] { CMN_freeSetNull(&null); }},
        {"StrSameIC", [] { CMN_StrSameIC(text, nullptr); }},
        {"StrSameICn of none", [] { CMN_StrSameICn(text, text, 0); }},
        {"ArgFree", [] { CMN_ArgFree(&empty); }},
        {"SetStr of no length", [] { CMN_SetStr(text, text, 0, text); }},
        {"SetStr without keyword", [] { CMN_SetStr(text, text, 4, nullptr); }},
        {"Get_Value", [] { CMN_Get_Value(nullptr, &value); }},
        {"OpenFile of kind 5", [] { CMN_OpenFile(text, 5, &file, nullptr); }},
        {"OpenFile of a long package name",
         [] { CMN_OpenFile(std::string(1024, 'p').c_str(), 2, &file, nullptr); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        EXPECT_ASSERTION(row.call(), "IbisParser/cmn");
    }
}

GTEST_TEST(Cmn, BoundedSetters)
{
    LogCapture log;
    gulLineNum = 3;
    char dest[CMN_PATH_MAX + 1] = "";
    EXPECT_EQ(CMN_SetKeywordStr(dest, "abcd", 3, "Key"), 1);
    EXPECT_STREQ(dest, "abc");
    EXPECT_EQ(log.Take(),
              "E1912 (line    3) - Key string 'abcd' is too long, truncating to 3 characters.\n");
    EXPECT_EQ(CMN_SetKeywordStr(dest, "other", 9, "Key"), 0);
    EXPECT_STREQ(dest, "abc");
    EXPECT_EQ(log.Take(), "E1911 (line    3) - Duplicate 'Key' keyword.\n");
    CMN_SetStr(dest, "abc", 3, "Key");
    EXPECT_EQ(log.Take(), "");
    CMN_SetStr(dest, "", 3, "Key");
    EXPECT_STREQ(dest, "");
    EXPECT_EQ(log.Take(), "E1913 (line    3) - Zero length value for keyword 'Key'.\n");

    // A file name is reported but kept.
    EXPECT_EQ(CMN_SetFilenameStr(dest, "abcd", 3, "Key"), 1);
    EXPECT_STREQ(dest, "abcd");
    EXPECT_EQ(log.Take(),
              "E1914 (line    3) - Key string 'abcd' is too long, maximum length 3 allowed.\n");
    EXPECT_EQ(CMN_SetFilenameStr(dest, "x", 3, "Key"), 0);
    log.Take();
    dest[0] = '\0';
    CMN_SetFilenameStr(dest, std::string(3000, 'n').c_str(), 3, "Key");
    EXPECT_EQ(std::strlen(dest), 1024u);
}

// Neither the copy nor the quoted text passes 2176 characters.
GTEST_TEST(Cmn, QuotedTextIsCapped)
{
    LogCapture log;
    gulLineNum = 3;
    static char dest[5001];
    CMN_SetStr(dest, std::string(6000, 's').c_str(), 5000, "Key");
    EXPECT_EQ(std::strlen(dest), 2176u);
    EXPECT_EQ(log.Take(), "E1912 (line    3) - Key string '" + std::string(2176, 's') +
                              "' is too long, truncating to 2176 characters.\n");
    CMN_SetStr(dest, std::string(4000, 's').c_str(), 5000, "Key");
    EXPECT_EQ(std::strlen(dest), 4000u);
    EXPECT_EQ(log.Take(), "");
}
