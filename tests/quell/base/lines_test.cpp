#include "quell/base/lines.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "tests/support/TempDir.h"

namespace quell {
namespace {

template <typename Lines>
std::vector<std::pair<size_t, std::string>> Walk(Lines lines)
{
    std::vector<std::pair<size_t, std::string>> walked;
    std::string_view line;
    while (lines.Next(line))
        walked.emplace_back(lines.Number(), line);
    return walked;
}

// Files are read in blocks of a power of two: the ends of lines lie around such places.
GTEST_TEST(Lines, AFileHasTheLinesOfItsText)
{
    const TempDir scratch;
    std::vector<std::string> texts = {"", "\n", "\xEF\xBB\xBF", "\xEF\xBB\xBFx", "one\rtwo\r"};
    for (const size_t size : {4096u, 65536u, 131072u})
        for (size_t before = 0; before < 4; ++before)
            for (const char* end : {"\r\nlast", "\r\n\r\n", "\r\xEF\xBB\xBFlast\n", "\r"})
                texts.push_back(std::string(size - before, 'x') + end);
    for (const std::string& text : texts) {
        const auto lines = Walk(FileLines(scratch.Write("text", text)));
        EXPECT_EQ(lines, Walk(LineWalker(text))) << text.size();
    }
}

}  // namespace
}  // namespace quell
