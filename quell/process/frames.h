// Records on a pipe between two processes of one program: numbers and texts, in frames that carry
// their length, so that a stream which ends in the middle of one loses no more than that one.
#ifndef QUELL_PROCESS_FRAMES_H
#define QUELL_PROCESS_FRAMES_H

#include <csignal>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace quell {

class FrameWriter {
public:
    explicit FrameWriter(int descriptor) : m_Descriptor(descriptor) {}

    void Begin();
    void Number(uint64_t value);
    void Text(std::string_view text);
    void End();
    // A whole frame of its kind and one text.
    void Send(uint64_t kind, std::string_view text);

    void Flush();
    // What is complete and not written yet, from the handler of a signal that ends the process.
    void FlushDying();

private:
    int m_Descriptor;
    std::string m_Frames;  // complete ones
    std::string m_Frame;   // the one being written
    volatile std::sig_atomic_t m_Busy = 0;
};

// The fields of one frame, in the order in which they were written. What is not there reads as 0
// and as an empty text.
class FrameFields {
public:
    explicit FrameFields(std::string_view bytes) : m_Bytes(bytes) {}
    uint64_t Number();
    std::string_view Text();

private:
    std::string_view m_Bytes;
};

class FrameReader {
public:
    // Takes the next bytes of the stream, cut anywhere, and hands on each frame that is complete.
    void Receive(std::string_view bytes, const std::function<void(FrameFields)>& take);

private:
    std::string m_Rest;
};

}  // namespace quell

#endif
