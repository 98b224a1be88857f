// Where a check prints.
#ifndef QUELL_CHECK_OUTPUT_H
#define QUELL_CHECK_OUTPUT_H

#include <ostream>
#include <string>
#include <string_view>

#include "quell/base/errors.h"
#include "quell/base/progress.h"
#include "quell/check/spool.h"

namespace quell {

// Standard output, and a progress bar on the terminal that gives way to it.
class Output {
public:
    Output(std::ostream& out, size_t files) : m_Out(out), m_Progress(files, "files") {}

    void Print(std::string_view text)
    {
        if (text.empty()) return;
        m_Progress.Clear();
        m_Out << text;
    }
    // Everything that waits.
    void Print(Spool& waiting)
    {
        waiting.Pour([this](std::string_view text) { Print(text); });
    }
    // On standard error, behind what was printed.
    void PrintError(const std::string& text)
    {
        m_Out.flush();
        m_Progress.Clear();
        quell::PrintError(text);
    }
    // After each file.
    void Show(size_t filesDone)
    {
        m_Out.flush();
        m_Progress.Show(filesDone);
    }
    void EndProgress() { m_Progress.Clear(); }

private:
    std::ostream& m_Out;
    Progress m_Progress;
};

}  // namespace quell

#endif
