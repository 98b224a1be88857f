// Where findings stand.
#include "IbisParser/base/place.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "IbisParser/base/token.h"
#include "IbisParser/parse.h"

static PlaceReading s_now = {};

// The remembered places by the addresses of their records: open addressing with linear probing,
// doubled at two thirds full.
struct PlaceEntry {
    const void* record;
    unsigned line;
    unsigned column;
};

enum { FIRST_ROOM = 1024 };  // a power of two, as every room

static PlaceEntry s_first[FIRST_ROOM];
static PlaceEntry* s_entries = s_first;
static std::size_t s_room = FIRST_ROOM;
static std::size_t s_count = 0;

// Where the lines of a parameter file begin in its text, in order.
struct TextStart {
    std::size_t offset;
    unsigned long line;
};

static struct {
    TextStart* starts;
    std::size_t count;
    std::size_t room;
} s_text = {};

static PlaceEntry* s_probe(PlaceEntry* entries, std::size_t room, const void* record)
{
    const std::uint64_t mixed = reinterpret_cast<std::uintptr_t>(record) * 0x9E3779B97F4A7C15u;
    std::size_t i = (mixed >> 32) & (room - 1);
    while (entries[i].record != nullptr && entries[i].record != record)
        i = (i + 1) & (room - 1);
    return &entries[i];
}

static void s_release()
{
    if (s_entries != s_first) std::free(s_entries);
}

// Silent when it fails: a finding without its line is better than a finding about that.
static bool s_grow()
{
    const std::size_t room = 2 * s_room;
    auto* entries = static_cast<PlaceEntry*>(std::calloc(room, sizeof(PlaceEntry)));
    if (entries == nullptr) return false;
    for (std::size_t i = 0; i < s_room; ++i)
        if (s_entries[i].record != nullptr)
            *s_probe(entries, room, s_entries[i].record) = s_entries[i];
    s_release();
    s_entries = entries;
    s_room = room;
    return true;
}

// The column of a place in the line being read.
static unsigned s_columnOf(const char* text)
{
    return static_cast<unsigned>(text - s_now.line) + 1;
}

static bool s_isBlank(char c)
{
    return c == '\0' || TOKEN_IsBlank(c);
}

// Of the first word of the line being read.
static unsigned s_firstColumn()
{
    if (s_now.line == nullptr) return 0;
    for (std::size_t i = 0; i < s_now.length; ++i)
        if (!s_isBlank(s_now.line[i])) return s_columnOf(s_now.line + i);
    return 0;
}

static bool s_isBoundary(char c)
{
    return s_isBlank(c) || std::strchr("[](){}<>=,;:/\"'|", c) != nullptr;
}

// The text at a place of the line, where blanks may have become zeros.
static bool s_standsAt(const char* place, const char* text, std::size_t length)
{
    for (std::size_t i = 0; i < length; ++i)
        if (place[i] != text[i] && !(place[i] == '\0' && TOKEN_IsBlank(text[i]))) return false;
    return true;
}

// The column of a text that is a part of the line, or a copy of whole words of it; else 0.
static unsigned s_columnOfText(const char* text)
{
    const auto begin = reinterpret_cast<std::uintptr_t>(s_now.line);
    const auto at = reinterpret_cast<std::uintptr_t>(text);
    if (begin <= at && at < begin + s_now.length) return static_cast<unsigned>(at - begin) + 1;
    const std::size_t length = std::strlen(text);
    if (length == 0) return 0;
    for (std::size_t i = 0; i + length <= s_now.length; ++i) {
        const char* place = s_now.line + i;
        if (i > 0 && !s_isBoundary(place[-1]) && !s_isBoundary(*place)) continue;
        if (!s_standsAt(place, text, length)) continue;
        if (i + length == s_now.length || s_isBoundary(place[length])) return s_columnOf(place);
    }
    return 0;
}

PlaceSpot PLACE_Here()
{
    return {PARSE_GetLineNum(), s_firstColumn()};
}

PlaceSpot PLACE_At(const char* word)
{
    const unsigned column = s_now.line != nullptr ? s_columnOfText(word) : 0;
    return {PARSE_GetLineNum(), column};
}

void PLACE_Remember(const void* record)
{
    if (s_now.line != nullptr) PLACE_RememberAt(record, PLACE_Here());
}

void PLACE_RememberAt(const void* record, PlaceSpot spot)
{
    if (3 * (s_count + 1) > 2 * s_room && !s_grow()) return;
    PlaceEntry* entry = s_probe(s_entries, s_room, record);
    if (entry->record == nullptr) ++s_count;
    *entry = {record, static_cast<unsigned>(spot.line), spot.column};
}

PlaceSpot PLACE_Remembered(const void* record)
{
    const PlaceEntry* entry = s_probe(s_entries, s_room, record);
    return {entry->line, entry->column};
}

void PLACE_ForgetAll()
{
    s_release();
    s_entries = s_first;
    s_room = FIRST_ROOM;
    s_count = 0;
    std::memset(s_first, 0, sizeof s_first);
    std::free(s_text.starts);
    s_text = {};
}

void PLACE_AddToText(std::size_t offset)
{
    if (offset == 0) s_text.count = 0;
    if (s_text.count == s_text.room) {
        const std::size_t room = s_text.room == 0 ? 64 : 2 * s_text.room;
        void* block = std::realloc(s_text.starts, room * sizeof(TextStart));
        if (block == nullptr) return;
        s_text.starts = static_cast<TextStart*>(block);
        s_text.room = room;
    }
    s_text.starts[s_text.count++] = {offset, PARSE_GetLineNum()};
}

PlaceSpot PLACE_InText(std::size_t offset)
{
    const TextStart* end = s_text.starts + s_text.count;
    const TextStart* behind =
        std::upper_bound(static_cast<const TextStart*>(s_text.starts), end, offset,
                         [](std::size_t at, const TextStart& start) { return at < start.offset; });
    if (behind == s_text.starts) return {0, 0};
    return {behind[-1].line, static_cast<unsigned>(offset - behind[-1].offset) + 1};
}

PlaceScope::PlaceScope(ErrSubject subject, const char* name, PlaceSpot spot)
    : m_Outer(s_now.scope), m_Subject(subject), m_Name(name), m_Spot(spot)
{
    s_now.scope = this;
}

PlaceScope::~PlaceScope()
{
    s_now.scope = m_Outer;
}

void PLACE_Open(ErrSubject subject, const char* name)
{
    s_now.subject = subject;
    s_now.name = name;
    s_now.record = PLACE_Here();
}

void PLACE_Close()
{
    s_now.subject = SUBJECT_NONE;
    s_now.name = nullptr;
    s_now.record = {0, 0};
}

PlaceLine::PlaceLine(const char* line)
{
    s_now.line = line;
    s_now.length = std::strlen(line);
}

PlaceLine::~PlaceLine()
{
    s_now.line = nullptr;
    s_now.length = 0;
}

PlaceElsewhere::PlaceElsewhere() : m_Outside(s_now)
{
    s_now = {};
}

PlaceElsewhere::~PlaceElsewhere()
{
    s_now = m_Outside;
}

// A conversion of a message's format.
struct Conversion {
    const char* begin;  // the percent sign
    const char* end;
    int stars;  // widths and precisions among the arguments
    bool isLong;
    char letter;
};

static bool s_nextConversion(const char* format, Conversion* found)
{
    const char* at = std::strchr(format, '%');
    if (at == nullptr) return false;
    *found = {at, at + 1, 0, false, '\0'};
    while (*found->end != '\0' && std::strchr("-+ #0123456789.*lz", *found->end) != nullptr) {
        if (*found->end == '*') ++found->stars;
        if (*found->end == 'l' || *found->end == 'z') found->isLong = true;
        ++found->end;
    }
    found->letter = *found->end;
    if (found->letter != '\0') ++found->end;
    return true;
}

// The column of the first text that the message quotes from the line being read, else 0. The name
// of a keyword, which messages write in brackets, is none.
static unsigned s_quotedColumn(const char* format, va_list args)
{
    Conversion next = {};
    for (const char* rest = format; s_nextConversion(rest, &next); rest = next.end) {
        for (int i = 0; i < next.stars; ++i)
            (void)va_arg(args, int);
        if (next.letter == 's') {
            const char* text = va_arg(args, const char*);
            const bool isKeyword = next.begin > format && next.begin[-1] == '[';
            const unsigned column = text == nullptr || isKeyword ? 0 : s_columnOfText(text);
            if (column != 0) return column;
        } else if (std::strchr("diouxX", next.letter) != nullptr && next.letter != '\0') {
            if (next.isLong)
                (void)va_arg(args, long);
            else
                (void)va_arg(args, int);
        } else if (next.letter == 'c') {
            (void)va_arg(args, int);
        } else if (std::strchr("eEfgG", next.letter) != nullptr && next.letter != '\0') {
            (void)va_arg(args, double);
        } else if (next.letter != '%') {
            return 0;
        }
    }
    return 0;
}

// Records stand by themselves; all else is a part of one.
static bool s_isRecord(ErrSubject subject)
{
    switch (subject) {
        case SUBJECT_COMPONENT:
        case SUBJECT_SELECTOR:
        case SUBJECT_MODEL:
        case SUBJECT_SUBMODEL:
        case SUBJECT_PACKAGE_MODEL:
        case SUBJECT_BOARD:
        case SUBJECT_CIRCUIT:
        case SUBJECT_TEST_DATA:
        case SUBJECT_TEST_LOAD:
            return true;
        default:
            return false;
    }
}

unsigned long PLACE_LoggedLine()
{
    for (const PlaceScope* scope = s_now.scope; scope != nullptr; scope = scope->m_Outer)
        if (scope->m_IsLogged && scope->m_Spot.line != 0) return scope->m_Spot.line;
    return PARSE_GetLineNum();
}

void PLACE_Fill(ErrRecord* record, const char* format, va_list args)
{
    PlaceSpot item = {0, 0};
    record->subject = SUBJECT_NONE;
    record->name = "";
    record->corner = -1;
    record->recordLine = s_now.record.line;
    for (const PlaceScope* scope = s_now.scope; scope != nullptr; scope = scope->m_Outer) {
        if (item.line == 0) item = scope->m_Spot;
        if (record->corner < 0) record->corner = scope->m_Corner;
        if (record->subject == SUBJECT_NONE && scope->m_Subject != SUBJECT_NONE) {
            record->subject = scope->m_Subject;
            record->name = scope->m_Name;
        }
        if (s_isRecord(scope->m_Subject)) record->recordLine = scope->m_Spot.line;
    }
    if (record->subject == SUBJECT_NONE && s_now.subject != SUBJECT_NONE) {
        record->subject = s_now.subject;
        record->name = s_now.name;
    }
    if (record->subject == SUBJECT_NONE) {
        record->subject = SUBJECT_FILE;
        record->name = record->file;
    }
    // Outside all scopes a line is its own item.
    const bool isHere =
        s_now.line != nullptr && (item.line == 0 || item.line == PARSE_GetLineNum());
    if (isHere) {
        const unsigned quoted = s_quotedColumn(format, args);
        item = {PARSE_GetLineNum(), quoted != 0 ? quoted : s_firstColumn()};
    } else if (item.line == 0) {
        item = {record->line, 0};
    }
    record->itemLine = item.line;
    record->column = item.column;
}
