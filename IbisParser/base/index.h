// A hash index from names or numbers to pointers, for lookups that lists would make quadratic.
// Keys are bytes that stay with their owner: they must outlive the index.
#ifndef IBISPARSER_BASE_INDEX_H
#define IBISPARSER_BASE_INDEX_H

#include <cstddef>
#include <cstdint>

struct IdxEntry {
    std::uint64_t hash;
    const void* key;
    std::size_t length;
    void* value;
};

// All zero is an empty index that owns nothing.
struct IdxTable {
    IdxEntry* entries;
    std::size_t capacity;  // a power of two, or 0
    std::size_t count;
};

// The value stored for the key, or null.
void* IDX_Find(const IdxTable* table, const void* key, std::size_t length);
// Finds the key or adds it with a null value, and stores the address of its value, which stays good
// until the next IDX_Slot. 1 done, 0 when memory ran out (reported by the allocator).
int IDX_Slot(IdxTable* table, const void* key, std::size_t length, void*** value);
// Releases the entries and leaves an empty index.
void IDX_Clear(IdxTable* table);

// The same for zero-terminated names.
void* IDX_FindName(const IdxTable* table, const char* name);
int IDX_SlotName(IdxTable* table, const char* name, void*** value);

#endif
