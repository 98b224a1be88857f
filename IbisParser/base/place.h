// Where findings stand: what they are about, and in which line and column. A check opens a scope
// for each thing that it looks at, and every finding raised inside takes its place from there;
// while a file is read, the open record and the line being read tell it. The sink's record carries
// it.
#ifndef IBISPARSER_BASE_PLACE_H
#define IBISPARSER_BASE_PLACE_H

#include <cstdarg>
#include <cstddef>

#include "IbisParser/base/place.h"
#include "IbisParser/errlog.h"
#include "IbisParser/rng.h"

// Line and column count from 1; 0 is not known.
struct PlaceSpot {
    unsigned long line;
    unsigned column;
};

// The line being read, and the column of its first word.
PlaceSpot PLACE_Here();
// A word of that line, or a copy of one.
PlaceSpot PLACE_At(const char* word);
// Notes for a record, or a part of one, that it was made at the line being read. One entry for
// each; where there is no memory for it, its place is just not known.
void PLACE_Remember(const void* record);
// Where it was made.
PlaceSpot PLACE_Remembered(const void* record);
void PLACE_RememberAt(const void* record, PlaceSpot spot);
// With the last document.
void PLACE_ForgetAll();

// The text of a parameter file is joined from its lines. The line being read begins at the offset;
// the first one, at 0, begins a new text.
void PLACE_AddToText(std::size_t offset);
// The place of a character of that text.
PlaceSpot PLACE_InText(std::size_t offset);

// The place of a record: the line that it keeps where it keeps one, else the remembered one.
template <typename Record>
PlaceSpot PLACE_Of(const Record* record)
{
    PlaceSpot spot = PLACE_Remembered(record);
    if constexpr (requires { record->line; }) {
        if (spot.line != record->line) spot = {record->line, 0};
    }
    return spot;
}

// One thing that is looked at, while the scope lives. Scopes nest: the innermost one that tells a
// subject, a line or a corner answers for it. What a scope points at must outlive it.
class PlaceScope {
public:
    PlaceScope(ErrSubject subject, const char* name, PlaceSpot spot);
    // A record with a name.
    template <typename Record>
    PlaceScope(ErrSubject subject, const Record* record)
        : PlaceScope(subject, record->name, PLACE_Of(record))
    {
    }
    // An item of the subject that stands: a row, a table. Null changes nothing.
    template <typename Record>
    explicit PlaceScope(const Record* record)
        : PlaceScope(record != nullptr ? PLACE_Of(record) : PlaceSpot{0, 0})
    {
    }
    explicit PlaceScope(PlaceSpot spot) : PlaceScope(SUBJECT_NONE, nullptr, spot) {}
    // A RngCorner of the subject that stands.
    explicit PlaceScope(int corner) : PlaceScope(PlaceSpot{0, 0}) { m_Corner = corner; }
    ~PlaceScope();
    PlaceScope(const PlaceScope&) = delete;
    PlaceScope& operator=(const PlaceScope&) = delete;

private:
    friend void PLACE_Fill(ErrRecord* record, const char* format, va_list args);
    friend unsigned long PLACE_LoggedLine();
    friend class PlaceLogged;

    const PlaceScope* m_Outer;
    ErrSubject m_Subject;
    const char* m_Name;
    PlaceSpot m_Spot;
    int m_Corner = -1;
    bool m_IsLogged = false;
};

// The same for an item that is judged later than it is read: the log, too, names the item's line.
class PlaceLogged : public PlaceScope {
public:
    template <typename Record>
    explicit PlaceLogged(const Record* record) : PlaceScope(record)
    {
        m_IsLogged = true;
    }
    explicit PlaceLogged(PlaceSpot spot) : PlaceScope(spot) { m_IsLogged = true; }
};

// The line that the log names: that of the innermost scope which says so, else the one being read.
unsigned long PLACE_LoggedLine();

// What findings have in common while a file is read.
struct PlaceReading {
    const PlaceScope* scope;  // the innermost one
    ErrSubject subject;       // of the open record
    const char* name;
    PlaceSpot record;
    const char* line;  // being read, null between lines and files
    std::size_t length;
};

// The record that is being read, until the next one or PLACE_Close. Its name may come later; it
// stays where it is until then.
void PLACE_Open(ErrSubject subject, const char* name);
void PLACE_Close();

// The checks at the end of the open record: they are about it as a whole.
class PlaceClosing : public PlaceScope {
public:
    using PlaceScope::PlaceScope;
    ~PlaceClosing() { PLACE_Close(); }
};

// The line being read, while this lives. It may be cut and split in place: what becomes a zero
// counts as a blank.
class PlaceLine {
public:
    explicit PlaceLine(const char* line);
    ~PlaceLine();
    PlaceLine(const PlaceLine&) = delete;
    PlaceLine& operator=(const PlaceLine&) = delete;
};

// Another file is read while this lives, in the middle of a check: what stands outside tells
// nothing of it.
class PlaceElsewhere {
public:
    PlaceElsewhere();
    ~PlaceElsewhere();
    PlaceElsewhere(const PlaceElsewhere&) = delete;
    PlaceElsewhere& operator=(const PlaceElsewhere&) = delete;

private:
    PlaceReading m_Outside;
};

// Fills in the place of a message. format and args are those of its text: a word of the line being
// read that it quotes tells the column.
void PLACE_Fill(ErrRecord* record, const char* format, va_list args);

#endif
