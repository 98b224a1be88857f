// A file descriptor with an owner.
#ifndef QUELL_PROCESS_DESCRIPTOR_H
#define QUELL_PROCESS_DESCRIPTOR_H

#include <unistd.h>

namespace quell {

class Descriptor {
public:
    // -1: none.
    explicit Descriptor(int number = -1) : m_Number(number) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool IsOpen() const { return m_Number >= 0; }
    int Number() const { return m_Number; }
    // Takes the place of what was open before.
    void Reset(int number)
    {
        Close();
        m_Number = number;
    }
    void Close()
    {
        if (m_Number >= 0) close(m_Number);
        m_Number = -1;
    }

private:
    int m_Number;
};

}  // namespace quell

#endif
