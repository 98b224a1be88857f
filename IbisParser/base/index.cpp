// Open addressing with linear probing; the table doubles at two thirds full.
#include <cstring>

#include "IbisParser/base/index.h"
#include "IbisParser/cmn.h"

static const char s_Module[] = "IbisParser/index";

namespace {

struct Key {
    const void* bytes;
    std::size_t length;
    std::uint64_t hash;
};

// FNV-1a over bytes up to the one where ends(i) holds.
template <typename Ends>
Key MakeKey(const void* key, Ends ends)
{
    const unsigned char* bytes = static_cast<const unsigned char*>(key);
    std::uint64_t hash = 14695981039346656037u;
    std::size_t i = 0;
    for (; !ends(i); ++i)
        hash = (hash ^ bytes[i]) * 1099511628211u;
    // The low bits choose the slot; fold the better mixed high ones into them.
    return {key, i, hash ^ (hash >> 32)};
}

Key BytesKey(const void* key, std::size_t length)
{
    return MakeKey(key, [length](std::size_t i) { return i == length; });
}

Key NameKey(const char* name)
{
    return MakeKey(name, [name](std::size_t i) { return name[i] == '\0'; });
}

}  // namespace

// The entry of the key, or the free one where it belongs. The table must have a free entry.
static IdxEntry* s_probe(const IdxTable* table, const Key& key)
{
    std::size_t i = key.hash & (table->capacity - 1);
    for (;; i = (i + 1) & (table->capacity - 1)) {
        IdxEntry* entry = &table->entries[i];
        if (entry->key == nullptr) return entry;
        if (entry->hash == key.hash && entry->length == key.length &&
            std::memcmp(entry->key, key.bytes, key.length) == 0)
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
            *s_probe(&larger, {entry->key, entry->length, entry->hash}) = *entry;
    }
    IDX_Clear(table);
    *table = larger;
    return 1;
}

void* IDX_Find(const IdxTable* table, const void* key, std::size_t length)
{
    CMN_ASSERT(table != nullptr && key != nullptr);
    return table->count == 0 ? nullptr : s_probe(table, BytesKey(key, length))->value;
}

static int s_slot(IdxTable* table, const Key& key, void*** value)
{
    if (3 * (table->count + 1) > 2 * table->capacity && !s_grow(table)) return 0;
    IdxEntry* entry = s_probe(table, key);
    if (entry->key == nullptr) {
        *entry = {key.hash, key.bytes, key.length, nullptr};
        ++table->count;
    }
    *value = &entry->value;
    return 1;
}

int IDX_Slot(IdxTable* table, const void* key, std::size_t length, void*** value)
{
    CMN_ASSERT(table != nullptr && key != nullptr && value != nullptr);
    return s_slot(table, BytesKey(key, length), value);
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
    CMN_ASSERT(table != nullptr && name != nullptr);
    return table->count == 0 ? nullptr : s_probe(table, NameKey(name))->value;
}

int IDX_SlotName(IdxTable* table, const char* name, void*** value)
{
    CMN_ASSERT(table != nullptr && name != nullptr && value != nullptr);
    return s_slot(table, NameKey(name), value);
}
