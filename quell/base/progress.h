// A bar on a terminal while many files are checked or points are run.
#ifndef QUELL_BASE_PROGRESS_H
#define QUELL_BASE_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

namespace quell {

// "[=====     ]  120 of 5000 files"
std::string ProgressText(size_t done, size_t total, const std::string& what);

// On standard error; nothing when that is no terminal or there are few to come.
class Progress {
public:
    Progress(size_t total, std::string what);
    ~Progress() { Clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Draws it when the last time is a while ago.
    void Show(size_t done);
    // Before anything else is written to the terminal.
    void Clear();

private:
    size_t m_Total;
    std::string m_What;
    bool m_Enabled;
    bool m_Drawn = false;
    std::chrono::steady_clock::time_point m_Last;
};

}  // namespace quell

#endif
