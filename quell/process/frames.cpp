// Records on a pipe.
#include "quell/process/frames.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace quell {

namespace {

constexpr size_t Enough = 1U << 16;  // bytes that are worth a write

void AppendNumber(std::string& bytes, uint64_t value)
{
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes.append(raw, sizeof raw);
}

void WriteAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t size = write(descriptor, bytes.data(), bytes.size());
        if (size < 0 && errno == EINTR) continue;
        if (size < 0) return;  // nobody reads any more
        bytes.remove_prefix(static_cast<size_t>(size));
    }
}

}  // namespace

void FrameWriter::Begin()
{
    m_Frame.clear();
}

void FrameWriter::Number(uint64_t value)
{
    AppendNumber(m_Frame, value);
}

void FrameWriter::Text(std::string_view text)
{
    AppendNumber(m_Frame, text.size());
    m_Frame.append(text);
}

void FrameWriter::End()
{
    m_Busy = 1;
    AppendNumber(m_Frames, m_Frame.size());
    m_Frames += m_Frame;
    m_Busy = 0;
    if (m_Frames.size() >= Enough) Flush();
}

void FrameWriter::Send(uint64_t kind, std::string_view text)
{
    Begin();
    Number(kind);
    Text(text);
    End();
}

void FrameWriter::Flush()
{
    m_Busy = 1;
    WriteAll(m_Descriptor, m_Frames);
    m_Frames.clear();
    m_Busy = 0;
}

void FrameWriter::FlushDying()
{
    if (m_Busy == 0) WriteAll(m_Descriptor, m_Frames);
}

uint64_t FrameFields::Number()
{
    uint64_t value = 0;
    if (m_Bytes.size() < sizeof value) {
        m_Bytes = {};
        return 0;
    }
    std::memcpy(&value, m_Bytes.data(), sizeof value);
    m_Bytes.remove_prefix(sizeof value);
    return value;
}

std::string_view FrameFields::Text()
{
    const uint64_t size = Number();
    const std::string_view text = m_Bytes.substr(0, size);
    m_Bytes.remove_prefix(text.size());
    return text;
}

void FrameReader::Receive(std::string_view bytes, const std::function<void(FrameFields)>& take)
{
    m_Rest.append(bytes);
    std::string_view rest = m_Rest;
    for (;;) {
        FrameFields header(rest);
        const uint64_t size = header.Number();
        if (rest.size() < sizeof size || rest.size() - sizeof size < size) break;
        take(FrameFields(rest.substr(sizeof size, size)));
        rest.remove_prefix(sizeof size + size);
    }
    m_Rest.erase(0, m_Rest.size() - rest.size());
}

}  // namespace quell
