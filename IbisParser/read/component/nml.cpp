// Uniqueness of names.
#include "IbisParser/nml.h"

#include "IbisParser/base/index.h"
#include "IbisParser/cmn.h"
#include "IbisParser/errlog.h"

static const char s_Module[] = "IbisParser/nml";

int NML_CheckUnique(const void* head, size_t nameOffset, size_t nextOffset, const char* kindText)
{
    CMN_ASSERT(kindText != nullptr);
    const auto nameOf = [=](const void* record) {
        return static_cast<const char*>(record) + nameOffset;
    };
    const auto nextOf = [=](const void* record) {
        return *reinterpret_cast<const void* const*>(static_cast<const char*>(record) + nextOffset);
    };
    std::size_t count = 0;
    for (const void* record = head; record != nullptr; record = nextOf(record))
        ++count;
    void* block = nullptr;
    if (count < 2 || !CMN_malloc(&block, count * sizeof(char*))) return count < 2;

    const char** names = static_cast<const char**>(block);
    std::size_t place = count;
    for (const void* record = head; record != nullptr; record = nextOf(record))
        names[--place] = nameOf(record);
    IdxTable known = {nullptr, 0, 0};
    int unique = 1;
    for (std::size_t i = 0; i < count; ++i) {
        void** value = nullptr;
        if (names[i][0] == '\0' || !IDX_SlotName(&known, names[i], &value)) continue;
        if (*value != nullptr) {
            ERRLOG_ErrorNew(3600, kindText, names[i]);
            unique = 0;
        }
        *value = block;
    }
    IDX_Clear(&known);
    CMN_freeSetNull(&block);
    return unique;
}
