// Open addressing with linear probing; the table doubles at two thirds full.
#include <cstring>

#include "IbisParser/cmn.h"
#include "IbisParser/index_internal.h"

static const char s_Module[] = "IbisParser/index";

// FNV-1a.
static std::uint64_t s_hash(const void* key, std::size_t length)
{
    const unsigned char* bytes = static_cast<const unsigned char*>(key);
    std::uint64_t hash = 14695981039346656037u;
    for (std::size_t i = 0; i < length; ++i)
        hash = (hash ^ bytes[i]) * 1099511628211u;
    // The low bits choose the slot; fold the better mixed high ones into them.
    return hash ^ (hash >> 32);
}

// The entry of the key, or the free one where it belongs. The table must have a free entry.
static IdxEntry* s_probe(const IdxTable* table, std::uint64_t hash, const void* key,
                         std::size_t length)
{
    std::size_t i = hash & (table->capacity - 1);
    for (;; i = (i + 1) & (table->capacity - 1)) {
        IdxEntry* entry = &table->entries[i];
        if (entry->key == nullptr) return entry;
        if (entry->hash == hash && entry->length == length &&
            std::memcmp(entry->key, key, length) == 0)
            return entry;
    }
}

static int s_grow(IdxTable* table)
{
    IdxTable larger = {nullptr, table->capacity == 0 ? 16 : 2 * table->capacity, table->count};
    void* block = nullptr;
    if (!CMN_malloc(&block, larger.capacity * sizeof(IdxEntry))) return 0;
    larger.entries = static_cast<IdxEntry*>(block);
    for (std::size_t i = 0; i < table->capacity; ++i) {
        const IdxEntry* entry = &table->entries[i];
        if (entry->key != nullptr)
            *s_probe(&larger, entry->hash, entry->key, entry->length) = *entry;
    }
    IDX_Clear(table);
    *table = larger;
    return 1;
}

void* IDX_Find(const IdxTable* table, const void* key, std::size_t length)
{
    CMN_ASSERT(table != nullptr && key != nullptr);
    if (table->count == 0) return nullptr;
    return s_probe(table, s_hash(key, length), key, length)->value;
}

int IDX_Slot(IdxTable* table, const void* key, std::size_t length, void*** value)
{
    CMN_ASSERT(table != nullptr && key != nullptr && value != nullptr);
    if (3 * (table->count + 1) > 2 * table->capacity && !s_grow(table)) return 0;
    const std::uint64_t hash = s_hash(key, length);
    IdxEntry* entry = s_probe(table, hash, key, length);
    if (entry->key == nullptr) {
        *entry = {hash, key, length, nullptr};
        ++table->count;
    }
    *value = &entry->value;
    return 1;
}

void IDX_Clear(IdxTable* table)
{
    if (table->entries != nullptr) {
        void* block = table->entries;
        CMN_freeSetNull(&block);
    }
    *table = {nullptr, 0, 0};
}

void* IDX_FindName(const IdxTable* table, const char* name)
{
    return IDX_Find(table, name, std::strlen(name));
}

int IDX_SlotName(IdxTable* table, const char* name, void*** value)
{
    return IDX_Slot(table, name, std::strlen(name), value);
}
