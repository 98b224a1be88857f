#include "quell/base/progress.h"

#include <unistd.h>

#include <iostream>
#include <utility>

namespace quell {

namespace {

constexpr size_t Many = 20;
constexpr size_t Width = 40;  // columns of the bar
constexpr auto Between = std::chrono::milliseconds(100);

}  // namespace

std::string ProgressText(size_t done, size_t total, const std::string& what)
{
    const size_t full = total == 0 ? Width : Width * done / total;
    return "[" + std::string(full, '=') + std::string(Width - full, ' ') + "] " +
           std::to_string(done) + " of " + std::to_string(total) + " " + what;
}

Progress::Progress(size_t total, std::string what)
    : m_Total(total),
      m_What(std::move(what)),
      m_Enabled(total >= Many && isatty(STDERR_FILENO) == 1)
{
}

void Progress::Show(size_t done)
{
    if (!m_Enabled) return;
    const auto now = std::chrono::steady_clock::now();
    if (m_Drawn && now - m_Last < Between) return;
    m_Last = now;
    m_Drawn = true;
    std::cerr << '\r' << ProgressText(done, m_Total, m_What) << std::flush;
}

void Progress::Clear()
{
    if (!m_Drawn) return;
    m_Drawn = false;
    std::cerr << "\r\x1b[K" << std::flush;
}

}  // namespace quell
