// Text that waits for its turn.
#include "quell/check/spool.h"

#include <cerrno>
#include <cstring>

#include "quell/base/errors.h"

namespace quell {

namespace {

constexpr size_t InMemory = 1U << 20;  // bytes

[[noreturn]] void NoRoom()
{
    throw InputError(std::string("no room for a temporary file: ") + std::strerror(errno));
}

}  // namespace

void Spool::MoveToFile()
{
    if (!m_File) m_File.reset(std::tmpfile());
    if (!m_File || std::fwrite(m_Text.data(), 1, m_Text.size(), m_File.get()) != m_Text.size())
        NoRoom();
    m_Text.clear();
}

void Spool::Append(std::string_view text)
{
    m_Text += text;
    if (m_Text.size() > InMemory) MoveToFile();
}

void Spool::Clear()
{
    m_Text.clear();
    m_File.reset();
}

void Spool::Pour(const std::function<void(std::string_view)>& take)
{
    if (m_File) {
        if (std::fflush(m_File.get()) != 0) NoRoom();
        std::rewind(m_File.get());
        std::string piece(InMemory, '\0');
        while (const size_t size = std::fread(piece.data(), 1, piece.size(), m_File.get()))
            take(std::string_view(piece).substr(0, size));
        if (std::ferror(m_File.get()) != 0) NoRoom();
    }
    if (!m_Text.empty()) take(m_Text);
    Clear();
}

}  // namespace quell
