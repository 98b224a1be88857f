// Text for terminals, programs and standard error.
#include <gtest/gtest.h>

#include "quell/base/errors.h"
#include "quell/base/json.h"
#include "quell/base/printable.h"
#include "quell/base/progress.h"

namespace quell {
namespace {

GTEST_TEST(Base, PrintableTextDoesNothingButShowItself)
{
    static const struct {
        const char* text;
        const char* printable;
        size_t width;
    } rows[] = {
        {"plain ~", "plain ~", 7},
        {"a\tb\r\n\x1b[31m\x7f", "a b???[31m?", 11},
        {"\xC3\xA9\xE2\x82\xAC", "\xC3\xA9\xE2\x82\xAC", 2},
        {"\xC2\x9B"
         "2J",
         "?2J", 3},  // control as UTF-8
        {"\x9B"
         "2J\xFF\xC3",
         "?2J??", 5},                          // bytes that are no UTF-8
        {"\xC0\x9B\xE0\x80\x9B", "?????", 5},  // written too long
        {"\xE2\x80\xAE"
         "abc",
         "?abc", 4},                      // right to left
        {"\xF4\x90\x80\x80", "????", 4},  // beyond the last character
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Printable(row.text), row.printable);
        EXPECT_EQ(PrintedWidth(Printable(row.text)), row.width) << row.printable;
    }
}

GTEST_TEST(Base, ProgressFillsUp)
{
    EXPECT_EQ(ProgressText(0, 200, "files"), "[" + std::string(40, ' ') + "] 0 of 200 files");
    EXPECT_EQ(ProgressText(199, 200, "files"), "[" + std::string(39, '=') + " ] 199 of 200 files");
    EXPECT_EQ(ProgressText(200, 200, "files"), "[" + std::string(40, '=') + "] 200 of 200 files");
}

GTEST_TEST(Base, JsonTakesAnyBytes)
{
    const nlohmann::ordered_json json = {{"b", "\xFF\xC3\xA9"}, {"a", {1, nullptr}}};
    EXPECT_EQ(JsonText(json),
              "{\n  \"b\": \"\xEF\xBF\xBD\xC3\xA9\",\n  \"a\": [\n    1,\n    null\n  ]\n}\n");
    EXPECT_EQ(JsonLine(json), "{\"b\":\"\xEF\xBF\xBD\xC3\xA9\",\"a\":[1,null]}");
    EXPECT_EQ(JsonAsciiLine(json), "{\"b\":\"\\ufffd\\u00e9\",\"a\":[1,null]}");
}

GTEST_TEST(Base, OneLineOnStandardError)
{
    testing::internal::CaptureStderr();
    PrintError("a\nb");
    PrintWarning("c\r\nd");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "quell: a b\nwarning: c  d\n");
}

}  // namespace
}  // namespace quell
