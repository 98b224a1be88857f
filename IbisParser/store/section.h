// What the keyword sections do alike: frame messages, found flags, keyword arguments, limits that
// depend on the IBIS version, lists in file order and sets of names.
#ifndef IBISPARSER_STORE_SECTION_H
#define IBISPARSER_STORE_SECTION_H

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <type_traits>
#include <utility>

#include "IbisParser/base/index.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/base/version.h"
#include "IbisParser/cmn.h"
#include "IbisParser/ibis.h"
#include "IbisParser/keyword.h"

// The message numbers of a section's life cycle, the first six of its block.
struct SecFrame {
    const char* module;                          // "IbisParser/cmpnt"
    ErrNumber<const char*, int> noRoot;          // bug: _Init finds no document
    ErrNumber<> noRecord;                        // bug: no memory for the record
    ErrNumber<> orphanKeyword;                   // error: keyword line without a record
    ErrNumber<> orphanData;                      // error: data line without a record
    ErrNumber<const char*, int> unknownKeyword;  // line bug: code of another section
    ErrNumber<const char*, int> unknownKind;     // line bug: neither a keyword nor a data line
    ErrNumber<const char*> noData = 0;           // error: data line under a keyword that has none
};

// The front document, or null after the message. line is __LINE__, for the message.
IbisRoot* SEC_Root(const SecFrame* frame, int line);
// A zeroed record, or null after the message.
void* SEC_NewRecord(const SecFrame* frame, std::size_t size);
// The first test of every _ReceiveLine: whether the line kind is legal and a record is open; if
// not, after the message.
bool SEC_Receives(const SecFrame* frame, int line, int kind, const void* open);
// The message for a code that the section does not know.
void SEC_UnknownKeyword(const SecFrame* frame, int line);
// The same as SEC_NewRecord for the parts of a section: bug `number` with module and line.
void* SEC_NewPart(ErrNumber<const char*, int> number, const char* module, int line,
                  std::size_t size);

// Sets a bit of the found flags; true when it was not set before.
template <typename Flags>
bool SEC_MarkFound(Flags* flags, int bit)
{
    const Flags mask = static_cast<Flags>(1) << bit;
    const bool isFirst = (*flags & mask) == 0;
    *flags |= mask;
    return isFirst;
}

// Opens a file that another one names; null when there is none, or no plain file: a pipe that
// nobody writes to would be waited for, and a device has no end.
std::FILE* SEC_OpenFile(const char* path);

// A keyword as people write it, without brackets ("Diff Pin").
const char* SEC_KeywordName(int code);
// The text after the keyword of a keyword line, or its end. Unlike CMN_EatKeyword it takes any
// number of blanks, which a file may hold.
char* SEC_Argument(char* line);
// Raises the line warning `number` with the text and the keyword ("Pin") when text is not empty.
void SEC_IgnoreText(ErrNumber<const char*, const char*> number, const char* text,
                    const char* keyword);

// A whole number from 0 to INT_MAX. False, and count is left alone, for any other text.
bool SEC_ReadCount(const char* text, int* count);

// Whether a value is beyond a bound, and not only by the rounding of its scale letter: 100n is
// not above 100e-9.
bool SEC_Exceeds(double value, double bound);

// Copies at most limit characters; 0 when the text is longer. dest holds limit + 1.
int SEC_CopyName(char* dest, const char* text, unsigned limit);

// The same into record->name; what that cuts is kept whole in record->longName, which the record
// owns, so that names beyond the limit still differ.
template <typename Record>
bool SEC_KeepName(Record* record, const char* text, unsigned limit)
{
    if (SEC_CopyName(record->name, text, limit)) return true;
    record->longName = CMN_StrMake(text);
    return false;
}

// The name as the file has it.
template <typename Record>
const char* SEC_WholeName(const Record* record)
{
    return record->longName != nullptr ? record->longName : record->name;
}

// What the version class of the file being read allows.
unsigned SEC_Limit(VersionLimit limit);
// The version class of the file being read.
int SEC_Version();

// The row whose first member `name` is the word: exactly, failing that ignoring case; else null.
template <typename Row, std::size_t n>
const Row* SEC_FindRow(const Row (&rows)[n], const char* word)
{
    const Row* found = nullptr;
    for (const Row& row : rows) {
        // Letters that differ in their low bits are different ones in either case.
        if (((row.name[0] ^ word[0]) & 0x1F) != 0 || !CMN_StrSameIC(row.name, word)) continue;
        if (std::strcmp(row.name, word) == 0) return &row;
        if (found == nullptr) found = &row;
    }
    return found;
}

// A record of a list by name, exactly; or null.
template <typename Record>
Record* SEC_FindByName(Record* head, const char* name)
{
    for (Record* item = head; item != nullptr; item = item->next)
        if (std::strcmp(item->name, name) == 0) return item;
    return nullptr;
}

// Puts item in front of the list.
template <typename Record>
int SEC_AddLink(Record** head, Record* item)
{
    item->next = *head;
    *head = item;
    return 1;
}

// Puts item at the end of a list in file order. tail points at the link that ends the list, or is
// null before the first item; it must be reset with the list.
template <typename Record>
void SEC_Append(Record** head, Record*** tail, Record* item)
{
    Record** link = *tail != nullptr ? *tail : head;
    *link = item;
    *tail = &item->next;
}

// Frees every record of a list with release(record), which frees the record itself too.
template <typename Record, typename Release>
void SEC_FreeList(Record* head, Release release)
{
    while (head != nullptr) {
        Record* next = head->next;
        release(head);
        head = next;
    }
}

// Frees a record without owned parts.
template <typename Record>
void SEC_FreeRecord(Record* record)
{
    void* block = record;
    CMN_freeSetNull(&block);
}

// The items of a split line, for CMN_ArgParse and KRNG_Split: they free themselves.
struct SecArgs : CmnArgs {
    SecArgs() : CmnArgs{} {}
    ~SecArgs()
    {
        if (argv != nullptr) CMN_ArgFree(this);
    }
    SecArgs(const SecArgs&) = delete;
    SecArgs& operator=(const SecArgs&) = delete;
};

// The same for a record whose name was kept by SEC_KeepName.
template <typename Record>
void SEC_FreeNamed(Record* record)
{
    void* block = record->longName;
    if (block != nullptr) CMN_freeSetNull(&block);
    SEC_FreeRecord(record);
}

// Frees an owned text and clears its owner's pointer; null is ignored.
inline void SEC_FreeText(char** text)
{
    void* block = *text;
    if (block != nullptr) CMN_freeSetNull(&block);
    *text = nullptr;
}

// The records of a list that is newest first, oldest first: for (Mdl* model : order).
template <typename Record>
class SecFileOrder {
public:
    explicit SecFileOrder(Record* head)
    {
        for (const Record* item = head; item != nullptr; item = item->next)
            ++m_Count;
        void* block = nullptr;
        if (m_Count == 0 || !CMN_malloc(&block, m_Count * sizeof(Record*))) {
            m_Count = 0;
            return;
        }
        m_Items = static_cast<Record**>(block);
        std::size_t place = m_Count;
        for (Record* item = head; item != nullptr; item = item->next)
            m_Items[--place] = item;
    }
    ~SecFileOrder()
    {
        void* block = m_Items;
        if (block != nullptr) CMN_freeSetNull(&block);
    }
    SecFileOrder(const SecFileOrder&) = delete;
    SecFileOrder& operator=(const SecFileOrder&) = delete;

    Record** begin() const { return m_Items; }
    Record** end() const { return m_Items + m_Count; }
    std::size_t Count() const { return m_Count; }

private:
    Record** m_Items = nullptr;
    std::size_t m_Count = 0;
};

// An array of zeros for the time of a check, null without memory; a count of 0 has room for one.
template <typename T>
class SecArray {
public:
    explicit SecArray(std::size_t count)
    {
        if (!CMN_malloc(&m_Block, (count > 0 ? count : 1) * sizeof(T))) m_Block = nullptr;
    }
    ~SecArray()
    {
        if (m_Block != nullptr) CMN_freeSetNull(&m_Block);
    }
    SecArray(const SecArray&) = delete;
    SecArray& operator=(const SecArray&) = delete;

    explicit operator bool() const { return m_Block != nullptr; }
    T* Get() const { return static_cast<T*>(m_Block); }
    template <typename Place>
    T& operator[](Place place) const
    {
        return Get()[place];
    }

private:
    void* m_Block = nullptr;
};

// An index for the time of a check: it clears itself.
struct SecScopedIndex : IdxTable {
    SecScopedIndex() : IdxTable{} {}
    ~SecScopedIndex() { IDX_Clear(this); }
    SecScopedIndex(const SecScopedIndex&) = delete;
    SecScopedIndex& operator=(const SecScopedIndex&) = delete;
};

// Records of a list by name, for many look-ups; of equal names the first in the list answers. The
// list must outlive the index.
template <typename Record>
class SecNameIndex {
public:
    explicit SecNameIndex(Record* head)
    {
        for (Record* item = head; item != nullptr; item = item->next) {
            void** value = nullptr;
            if (!IDX_SlotName(&m_Table, item->name, &value)) return;
            if (*value == nullptr) *value = const_cast<std::remove_const_t<Record>*>(item);
        }
    }

    Record* Find(const char* name) const
    {
        return static_cast<Record*>(IDX_FindName(&m_Table, name));
    }

private:
    SecScopedIndex m_Table;
};

// A set of strings that owns its members.
struct SecSet {
    IdxTable table = {nullptr, 0, 0};

    SecSet() = default;
    ~SecSet();
    SecSet(SecSet&& other) noexcept : table(std::exchange(other.table, {nullptr, 0, 0})) {}
    SecSet& operator=(SecSet&& other) noexcept
    {
        std::swap(table, other.table);
        return *this;
    }
};

// True when the string is new in the set, false when it is known (or memory ran out).
bool SEC_SetAdd(SecSet* set, const char* text);
bool SEC_SetHas(const SecSet* set, const char* text);
void SEC_SetClear(SecSet* set);

#endif
