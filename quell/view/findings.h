// Which model a finding of the checks is about, and which picture shows what it found.
#ifndef QUELL_VIEW_FINDINGS_H
#define QUELL_VIEW_FINDINGS_H

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "quell/check/report.h"

namespace quell {

// The sections of a document by their lines and its models by their names.
class ModelIndex {
public:
    // Models in the order in which they are numbered from 0.
    void AddModel(std::string_view name, unsigned long line);
    // Any other section that begins at a line.
    void AddSection(unsigned long line);

    static constexpr size_t None = static_cast<size_t>(-1);
    // The model that the text names between quotation marks, else the one whose section holds the
    // line.
    size_t Find(const Finding& finding) const;

private:
    std::map<std::string, size_t, std::less<>> m_Names;
    std::map<unsigned long, size_t> m_Lines;
    size_t m_Count = 0;
};

// "model 'X'" with the name between the marks taken out, so that phrases are looked for in the
// words of the message only.
std::string WithoutQuotes(std::string_view text);

// The corner that a finding's text names after the model, "typ", "min" or "max", else -1.
int CornerOf(std::string_view text);

}  // namespace quell

#endif
