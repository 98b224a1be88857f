// Memory that a process shares with the one that started it, its end guarded.
#include "quell/process/shared_block.h"

#include <sys/mman.h>
#include <unistd.h>

#include "quell/base/errors.h"

namespace quell {

SharedBlock::SharedBlock(size_t size)
{
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t inner = (size + page - 1) / page * page;
    m_Length = inner + 2 * page;
    m_Mapping = mmap(nullptr, m_Length, PROT_NONE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    char* const begin = static_cast<char*>(m_Mapping) + page;
    if (m_Mapping == MAP_FAILED || mprotect(begin, inner, PROT_READ | PROT_WRITE) != 0)
        throw CommandError(EXIT_MODEL_BROKEN, "no memory to share with a process");
    // Down to 16 bytes, the alignment that malloc gives.
    m_Data = begin + (inner - size) / 16 * 16;
}

SharedBlock::~SharedBlock()
{
    munmap(m_Mapping, m_Length);
}

}  // namespace quell
