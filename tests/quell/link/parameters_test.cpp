#include "quell/link/parameters.h"

#include <gtest/gtest.h>

#include "quell/base/errors.h"

namespace quell {
namespace {

std::string Build(const std::vector<const char*>& texts)
{
    try {
        std::vector<Setting> settings;
        for (const char* text : texts)
            settings.push_back(ParseSetting(text));
        return BuildParameterString("Root", settings);
    } catch (const InputError& error) {
        return error.what();
    }
}

GTEST_TEST(Parameters, SettingsBecomeATree)
{
    static const struct {
        std::vector<const char*> settings;
        const char* text;
    } rows[] = {
        {{}, "(Root)"},
        {{"de_emphasis=3.5"}, "(Root (de_emphasis 3.5))"},
        {{"Root.de_emphasis=3.5"}, "(Root (de_emphasis 3.5))"},
        {{"tap.0=1", "mode=fast", "tap.1=-0.1"}, "(Root (tap (0 1) (1 -0.1)) (mode fast))"},
        {{"a.b.c=1", "a.d=2"}, "(Root (a (b (c 1)) (d 2)))"},
        {{"file=my taps.txt", "empty="}, "(Root (file \"my taps.txt\") (empty \"\"))"},
        {{"a=b=c"}, "(Root (a b=c))"},
        {{"a=1", "a=2"}, "--set a: given twice"},
        {{"a=1", "a.b=2"}, "--set a.b: both a branch and a parameter"},
        {{"a.b=1", "a=2"}, "--set a: both a branch and a parameter"},
        {{"a"}, "--set 'a' is not of the form NAME=VALUE"},
        {{"=1"}, "--set '=1' is not of the form NAME=VALUE"},
        {{"a..b=1"}, "--set 'a..b=1': empty part of the name"},
        {{"a.=1"}, "--set 'a.=1': empty part of the name"},
        {{"a b=1"},
         "--set 'a b=1': a name holds no blanks, quotes, parentheses or control characters"},
        {{"a=1)(b 2"},
         "--set 'a=1)(b 2': a value holds no quotes, parentheses or control characters"},
        {{"a=\"x\""},
         "--set 'a=\"x\"': a value holds no quotes, parentheses or control characters"},
        {{"a=1\n"}, "--set 'a=1?': a value holds no quotes, parentheses or control characters"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Build(row.settings), row.text);
    EXPECT_THROW(BuildParameterString("my model", {}), InputError);
}

}  // namespace
}  // namespace quell
