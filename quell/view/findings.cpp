// Which model a finding is about.
#include "quell/view/findings.h"

#include <iterator>

#include "IbisParser/rng.h"

namespace quell {

namespace {

// How messages name a corner.
constexpr std::pair<const char*, int> CornerWords[] = {
    {" typ,", CORNER_TYP},          {" typ:", CORNER_TYP},          {" typ ", CORNER_TYP},
    {" min,", CORNER_MIN},          {" min:", CORNER_MIN},          {" min ", CORNER_MIN},
    {" max,", CORNER_MAX},          {" max:", CORNER_MAX},          {" max ", CORNER_MAX},
    {"typical column", CORNER_TYP}, {"minimum column", CORNER_MIN}, {"maximum column", CORNER_MAX},
};

}  // namespace

void ModelIndex::AddModel(std::string_view name, unsigned long line)
{
    m_Names.emplace(name, m_Count);
    m_Lines.emplace(line, m_Count);
    ++m_Count;
}

void ModelIndex::AddSection(unsigned long line)
{
    m_Lines.emplace(line, None);
}

size_t ModelIndex::Find(const Finding& finding) const
{
    const std::string_view text = finding.text;
    for (size_t open = text.find('\''); open != std::string_view::npos;) {
        const size_t close = text.find('\'', open + 1);
        if (close == std::string_view::npos) break;
        const auto named = m_Names.find(text.substr(open + 1, close - open - 1));
        if (named != m_Names.end()) return named->second;
        open = close;
    }
    if (finding.line == 0) return None;
    const auto behind = m_Lines.upper_bound(finding.line);
    return behind == m_Lines.begin() ? None : std::prev(behind)->second;
}

std::string WithoutQuotes(std::string_view text)
{
    std::string rest;
    bool inside = false;
    for (const char c : text) {
        if (c == '\'') inside = !inside;
        if (!inside || c == '\'') rest += c;
    }
    return rest;
}

int CornerOf(std::string_view text)
{
    const std::string words = WithoutQuotes(text);
    for (const auto& [word, corner] : CornerWords)
        if (words.find(word) != std::string::npos) return corner;
    return -1;
}

}  // namespace quell
