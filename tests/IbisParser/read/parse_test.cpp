// The reader: routing of keywords, context, options, parameter files, bad input.
#include "IbisParser/parse.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "IbisParser/ibis.h"
#include "tests/support/Messages.h"
#include "tests/support/TempDir.h"
#include "tests/support/aborts.h"

static const char* const s_extensions[] = {".ibs", ".pkg", ".ebd", ".ami"};

static std::string s_document(const std::string& name, const char* version, const std::string& body)
{
    return std::string("[IBIS Ver] ") + version + "\n[File Name] " + name + "\n[File Rev] 1\n" +
           body + "[End]\n";
}

static int s_read(const TempDir& dir, int type, const char* version, const std::string& body)
{
    const std::string name = std::string("x") + s_extensions[type - FILE_IBS];
    return PARSE(dir.Write(name, s_document(name, version, body)).c_str(), type);
}

// Openers in files that may not hold them, beyond what the package and component files under
// tests/data show.
GTEST_TEST(Parse, RefusesSectionsByFileType)
{
    static const struct {
        const char* version;
        int type;
        const char* keywords;
        const char* numbers;
    } rows[] = {
        {"3.2", FILE_EBD, "[Component] a\n[Model] a\n[Model Selector] a\n[Submodel] a\n",
         "912 912 912 912"},
        {"4.2", FILE_EBD, "[Test Data] a\n[Test Load] a\n[Define Package Model] a\n",
         "912 912 912"},
        {"4.2", FILE_EBD, "[External Circuit] a\n", "911"},
        {"2.1", FILE_EBD, "[Component] a\n[Model] a\n[Define Package Model] a\n", "911 911 912"},
        {"3.2", FILE_IBS, "[Begin Board Description] a\n", "913"},
        {"3.2", FILE_EBD, "[Begin Board Description] a\n[End Board Description]\n", ""},
        {"3.2", FILE_PKG, "[Define Package Model] a\n[End Package Model]\n", ""},
    };
    const TempDir dir;
    Messages messages(900, 999);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.keywords);
        INIT();
        EXPECT_EQ(s_read(dir, row.type, row.version, row.keywords), 1);
        EXPECT_EQ(messages.TakeNumbers(), row.numbers);
        FINI();
    }
}

// A comment line that is too long shows which keyword is current when it is read.
GTEST_TEST(Parse, KeywordsInContext)
{
    static const struct {
        int type;
        std::vector<const char*> keywords;
        std::vector<int> codes;
    } rows[] = {
        {FILE_IBS,
         {"[Submodel] s", "[Pulldown]", "[GND Clamp]", "[Nonsense]", "[Ramp]", "[Model] m",
          "[Pulldown]", "[Rising Waveform]"},
         {97, 101, 103, 119, 105, 32, 40, 49}},
        {FILE_IBS,
         {"[Submodel] s", "[Temperature Range]", "[POWER Clamp]", "[Submodel] s",
          "[Falling Waveform]"},
         {97, 33, 43, 97, 107}},
        {FILE_PKG,
         {"[Define Package Model] p", "[Manufacturer] m", "[OEM] o", "[Manufacturer] m",
          "[Number Of Pins] 2", "[Manufacturer] m"},
         {74, 75, 76, 75, 78, 10}},
        {FILE_EBD,
         {"[Begin Board Description] b", "[Manufacturer] m", "[Manufacturer] m",
          "[Number Of Pins] 2", "[Manufacturer] m"},
         {89, 90, 90, 91, 10}},
        {FILE_IBS,
         {"[External Circuit] e", "[Pin]", "[Begin EMI Component]", "[End]"},
         {24, 12, 26, 118}},
    };
    const TempDir dir;
    Messages messages(1, 0);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.keywords[0]);
        std::string body;
        for (const char* keyword : row.keywords)
            body += std::string(keyword) + "\n|" + std::string(120, '-') + "\n";
        std::vector<int> codes;
        messages.OnMessage = [&codes](const ErrRecord& record) {
            if (record.asked == 905) codes.push_back(geCurrentKeyword);
        };
        INIT();
        s_read(dir, row.type, "5.0", body);
        EXPECT_EQ(codes, row.codes);
        FINI();
    }
}

// Version 2 has no boards: their keyword is unknown, and has no record.
GTEST_TEST(Parse, KeywordOfALaterVersion)
{
    const TempDir dir;
    Messages messages;
    INIT();
    s_read(dir, FILE_EBD, "2.1", "[Number Of Pins] 1\n");
    EXPECT_EQ(messages.TakeNumbers(), "908 4302");
    FINI();
}

// An unfinished item is reported at the next keyword, even when that is in another file.
GTEST_TEST(Parse, UnfinishedItem)
{
    const TempDir dir;
    Messages messages;
    unsigned long line = 0;
    messages.OnMessage = [&line](const ErrRecord& record) { line = record.line; };
    INIT();
    gbContinue = 1;
    s_read(dir, FILE_PKG, "3.2", "");
    EXPECT_EQ(messages.TakeNumbers(), "909");
    EXPECT_EQ(line, 1u);
    EXPECT_EQ(gbContinue, 0);
    FINI();
}

GTEST_TEST(Parse, AnyLineLength)
{
    const TempDir dir;
    Messages messages;
    INIT();
    PARSE_AllowAnyLineLength(7);
    EXPECT_EQ(gbAllowAnyLineLength, 1);
    s_read(dir, FILE_PKG, "3.2", "[Notes]" + std::string(900, ' ') + "far\n");
    EXPECT_EQ(messages.TakeNumbers(), "");
    PARSE_AllowAnyLineLength(0);
    s_read(dir, FILE_PKG, "3.2", "[Notes]" + std::string(900, ' ') + "far\n");
    EXPECT_EQ(messages.TakeNumbers(), "905");
    EXPECT_EQ(gbAllowAnyLineLength, 0);
    FINI();
}

GTEST_TEST(Parse, KeywordNamesAreThoseOfVersion2)
{
    Messages messages;
    char name[118];
    EXPECT_STREQ(PARSE_GetKeywordStr(KEY_GND_CLAMP, name), "GND_CLAMP");
    EXPECT_STREQ(PARSE_GetKeywordStr(KEY_PKGMDL_MANUFACTURER, name), "MANUFACTURER");
    EXPECT_EQ(messages.TakeNumbers(), "");
    for (const int code : {int{KEY_MODEL_SPEC}, int{KEY_ALGORITHMIC_MODEL}, 120, -1}) {
        EXPECT_STREQ(PARSE_GetKeywordStr(code, name), "Unknown enumerated keyword code");
        EXPECT_EQ(messages.TakeNumbers(), "904");
    }
}

GTEST_TEST(Parse, Banner)
{
    const TempDir dir;
    LogCapture log;
    const std::string ibs = dir.Write("x.ibs", s_document("x.ibs", "4.1", ""));
    const std::string ami = dir.Write("x.ami", "(a (b 1))\n");
    INIT();
    testing::internal::CaptureStdout();
    PARSE(ibs.c_str(), FILE_IBS);
    PARSE(ami.c_str(), FILE_AMI);
    PARSE_SuppressBanners(2);
    PARSE(ami.c_str(), FILE_AMI);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "\nChecking " + ibs + " for IBIS 4.2 Compatibility...\n\n\nChecking " + ami +
                  " for IBIS 5.0 Compatibility...\n\n");
    FINI();
}

GTEST_TEST(Parse, ParameterText)
{
    static const struct {
        const char* file;
        const char* text;  // null for none
    } rows[] = {
        {"(a  \n  (b 1)\t \n)\n", "(a  (b 1))"},
        {"| c\n(a \"x|y\"\n(b 1)) | d\n", "(a \"x(b 1))"},
        {"|\n \n\n", nullptr},
        {"", nullptr},
        {"(a (b\r\n1))", "(a (b1))"},
    };
    const TempDir dir;
    Messages messages;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        EXPECT_EQ(PARSE(dir.Write("x.ami", row.file).c_str(), FILE_AMI), 1);
        EXPECT_STREQ(gsBuffer, row.text);
    }
    PARSE(dir.Write("x.ami", "(a (b 1))").c_str(), FILE_AMI);
    EXPECT_EQ(PARSE(dir.Write("x.txt", "(a)").c_str(), FILE_AMI), 0);
    EXPECT_EQ(gsBuffer, nullptr) << "the text of another file would be checked";
    EXPECT_EQ(PARSE((dir.Path() + "absent").c_str(), FILE_AMI), 0);
    EXPECT_EQ(messages.TakeNumbers(), "921 1924 1905");
}

// Blanks without end are no reason to stop.
GTEST_TEST(Parse, LongParameterLines)
{
    const TempDir dir;
    Messages messages;
    const std::string blanks(3000000, ' ');
    PARSE(dir.Write("x.ami", "(a\n" + blanks + "(b 1)" + blanks + ")").c_str(), FILE_AMI);
    ASSERT_NE(gsBuffer, nullptr);
    EXPECT_EQ(std::string(gsBuffer), "(a" + blanks + "(b 1)" + blanks + ")");
    TEST(FILE_AMI, 0);
    EXPECT_EQ(messages.TakeNumbers(), "4622");
    EXPECT_EQ(gbAllowAnyLineLength, 0);
}

GTEST_TEST(Parse, OpenFailures)
{
    const TempDir dir;
    Messages messages;
    INIT();
    EXPECT_EQ(PARSE((dir.Path() + "absent.ibs").c_str(), FILE_IBS), 0);
    EXPECT_EQ(messages.TakeNumbers(), "1905 900");
    EXPECT_EQ(PARSE((dir.Path() + "/.ibs/").c_str(), FILE_IBS), 0);
    EXPECT_NE(messages.TakeNumbers(), "");
    std::filesystem::create_directory((dir.Path() + "folder.ibs"));
    std::filesystem::create_directory((dir.Path() + "folder.ami"));
    EXPECT_EQ(PARSE((dir.Path() + "folder.ibs").c_str(), FILE_IBS), 0);
    EXPECT_EQ(messages.TakeNumbers(), "900");
    EXPECT_EQ(PARSE((dir.Path() + "folder.ami").c_str(), FILE_AMI), 1);
    EXPECT_EQ(messages.TakeNumbers(), "");
    FINI();
}

GTEST_TEST(Parse, MistakesOfTheCaller)
{
    gbSuppressBanners = 1;
    EXPECT_ASSERTION(PARSE(nullptr, FILE_IBS), "IbisParser/parse");
    EXPECT_ASSERTION(PARSE("x", 5), "IbisParser/cmn");
    EXPECT_ASSERTION(PARSE("x", 0), "IbisParser/cmn");
}

// Every file type takes every kind of rubbish to its end.
static void s_readAll(const TempDir& dir, const std::string& bytes)
{
    for (int type = FILE_IBS; type <= FILE_AMI; ++type) {
        const std::string path = dir.Write(std::string("x") + s_extensions[type - FILE_IBS], bytes);
        INIT();
        if (PARSE(path.c_str(), type)) TEST(type, 0);
        FINI();
    }
}

static const char s_everything[] =
    R"([IBIS Ver] 5.0
[File Name] x.ibs
[File Rev] 1
[Component] c
[Manufacturer] m
[Package]
R_pkg 1 1 1
L_pkg 1n 1n 1n
C_pkg 1p 1p 1p
[Pin] signal_name model_name
1 a b
[Model] b
Model_type I/O
C_comp 1p NA NA
[Voltage Range] 1 NA NA
[Pulldown]
0 0 NA NA
1 1m NA NA
[Ramp]
dV/dt_r 1/1n NA NA
[Algorithmic Model]
Executable Linux_gcc_64 a.so x.ami
[End Algorithmic Model]
[Submodel] s
[Pulldown]
[Define Package Model] p
[Number Of Pins] 1
[Pin Numbers]
1 Len=0 L=1n /
[End Package Model]
[End]
)";

GTEST_TEST(Parse, FilesCutAnywhere)
{
    const TempDir dir;
    Messages messages(1, 0);
    const std::string text = s_everything;
    const std::string parameters =
        "(r (Reserved_Parameters (Tx_Jitter (Usage Info) (Format DjRj 1 2 \"3\")))\n(Description "
        "\"x\"))";
    for (std::size_t length = 0; length <= text.size(); length += 3)
        s_readAll(dir, text.substr(0, length));
    for (std::size_t length = 0; length <= parameters.size(); ++length)
        s_readAll(dir, parameters.substr(0, length));
}

GTEST_TEST(Parse, Noise)
{
    const TempDir dir;
    Messages messages(1, 0);
    std::mt19937 random(7);
    static const char characters[] = "[]|()_/= \"\n\r\t\0\x1a\xff#0.eIBNS";
    const std::string alphabet(characters, sizeof characters - 1);
    for (int round = 0; round < 60; ++round) {
        std::string bytes = round % 2 == 0 ? "" : s_everything;
        for (int i = 0; i < 300; ++i) {
            const char c = alphabet[random() % alphabet.size()];
            if (bytes.size() < 300)
                bytes += c;
            else
                bytes[14 + random() % (bytes.size() - 14)] = c;
        }
        s_readAll(dir, bytes);
    }
    std::string replaced = s_everything;
    for (char& c : replaced)
        if (c == '\n') c = '\r';
    s_readAll(dir, replaced);
}
