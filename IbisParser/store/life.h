// How a section lives.
//
// A section is a kind of record of the document ([Model], [Test Load] ...) with the keywords that
// may stand in it. It lives by what the sender tells it:
//
//   _Init         Its opening keyword came. A record that is still open is closed first; then a
//                 zeroed one is made, given the line that it begins in and put into the document.
//   _ReceiveLine  A line of one of its keywords came: the keyword line itself, which is the first
//                 line after _Init, or a data line under it.
//   _Fini         Any keyword comes next, of this section or of another one. The current keyword
//                 has all its data now and is finished. A keyword of another section, or one that
//                 opens the next record, closes the record too; one that nobody knows does not: it
//                 may be of a later version of IBIS, in the middle of the record.
//   _Close        The file is over, and the checks begin.
//   _FreeList     The document goes. A record that is open is given up, without a word.
//
// A keyword line goes this way: its row is found in the section's table; the keyword before it is
// finished; the new one becomes current and is marked as found; `judge` says what is wrong with it
// in its place; a second one of a keyword that may come once is refused, and its data lines are
// passed over; `begin` takes the text behind the keyword. Data lines go to `data` of the current
// row. At the end `finish` ends the keyword, and `end` judges the whole record.
//
// So a section consists of:
//
//   the record     in a public header; it holds what the file says and nothing of its reading
//   the reading    a SecReading, the only variable: the open record, the current keyword, and what
//                  the section adds to them. It is new for every record.
//   the keywords   a table of SecKeyword rows, or of rows that begin with one and add columns. Its
//                  functions take as much as they need: (record), or (record, text).
//   the life       a constant SecLife: message numbers, the table, and the functions for what this
//                  section does in a way of its own. Those left out do nothing.
//
// Every step is told once, here; what a section adds stands in its own file, in the order in which
// it happens. Messages stay with the sections: they name things that only those know.
#ifndef IBISPARSER_STORE_LIFE_H
#define IBISPARSER_STORE_LIFE_H

#include <cstddef>
#include <span>
#include <type_traits>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/parse.h"
#include "IbisParser/store/section.h"

// What a keyword does with a line: a function of the record, and of the text if it wants it.
template <typename Record>
class SecHandler {
public:
    constexpr SecHandler(std::nullptr_t = nullptr) {}
    constexpr SecHandler(int (*take)(Record*)) : m_Whole(take) {}
    constexpr SecHandler(int (*take)(Record*, const char*)) : m_Text(take) {}
    constexpr SecHandler(int (*take)(Record*, char*)) : m_Line(take) {}

    explicit operator bool() const
    {
        return m_Whole != nullptr || m_Text != nullptr || m_Line != nullptr;
    }
    int operator()(Record* record, char* text) const
    {
        if (m_Whole != nullptr) return m_Whole(record);
        return m_Text != nullptr ? m_Text(record, text) : m_Line(record, text);
    }

private:
    int (*m_Whole)(Record*) = nullptr;
    int (*m_Text)(Record*, const char*) = nullptr;
    int (*m_Line)(Record*, char*) = nullptr;  // cuts it in place
};

enum SecFlag : unsigned {
    SEC_TEXT = 1,        // text may follow the keyword
    SEC_ONCE = 2,        // a second one is refused
    SEC_ONCE_LINES = 4,  // a second one begins, but its data lines are passed over
};

template <typename Record>
struct SecKeyword {
    KeywordCode code;
    unsigned flags;
    SecHandler<Record> begin;
    SecHandler<Record> data;           // null: the keyword has no data lines
    int (*finish)(Record*) = nullptr;  // not called when its data lines were passed over
};

template <typename Row>
const Row* SEC_FindKeyword(std::span<const Row> rows, int code)
{
    for (const Row& row : rows)
        if (row.code == code) return &row;
    return nullptr;
}

// What a section remembers while it reads a record.
// found: the record's field for the keywords that came, a bit for each row of the table.
template <typename RecordType, typename RowType = SecKeyword<RecordType>, auto found = nullptr>
struct SecReading {
    using Record = RecordType;
    using Row = RowType;

    Record* open = nullptr;
    std::span<const Row> rows;     // of the section, while a record is open
    const Row* keyword = nullptr;  // the current one; null when it is finished
    bool isRepeated = false;       // it came before
    bool skips = false;            // its data lines are passed over
    int dataLines = 0;             // that it had

    const Row* Find(int code) const { return SEC_FindKeyword(rows, code); }
    // Whether the keyword came in the open record.
    bool Has(int code) const
    {
        const Row* row = Find(code);
        return row != nullptr && (open->*found >> (row - rows.data()) & 1) != 0;
    }
    // True when it came for the first time.
    bool Mark(const Row& row) const
    {
        if constexpr (std::is_null_pointer_v<decltype(found)>)
            return true;
        else
            return SEC_MarkFound(&(open->*found), static_cast<int>(&row - rows.data()));
    }
};

// The constant part of a section. What stands from `prepare` on may be left out.
template <typename Reading>
struct SecLife {
    using Record = typename Reading::Record;
    using Row = typename Reading::Row;

    Reading* reading;
    SecFrame frame;
    KeywordCode opener;
    ErrSubject subject;  // what findings about the record are about
    std::span<const Row> rows;
    int (*add)(IbisRoot*, Record*);
    void (*release)(Record*);           // frees a record, finished or not
    int (*prepare)(Record*) = nullptr;  // what does not start as zero; 0: no memory
    int (*judge)(Record*, const Row&, char*) = nullptr;  // 0 refuses the keyword
    void (*end)(Record*) = nullptr;

    // at is the source line of the section, for messages about its caller.
    int Init(int at = __builtin_LINE()) const
    {
        Close();
        IbisRoot* root = SEC_Root(&frame, at);
        if (root == nullptr) return 0;
        auto* record = static_cast<Record*>(SEC_NewRecord(&frame, sizeof(Record)));
        if (record == nullptr) return 0;
        if (prepare != nullptr && !prepare(record)) {
            release(record);
            return 0;
        }
        record->line = PARSE_GetLineNum();
        *reading = {};
        reading->rows = rows;
        reading->open = record;
        PLACE_Open(subject, record->name);
        return add(root, record);
    }

    int ReceiveLine(int kind, int code, char* line, int at = __builtin_LINE()) const
    {
        if (line == nullptr) CMN_AssertFailed(frame.module, at);
        if (!SEC_Receives(&frame, at, kind, reading->open)) return 0;
        const Row* row = kind == LINE_KEYWORD ? reading->Find(code) : reading->keyword;
        if (row == nullptr || row->code != code) {
            SEC_UnknownKeyword(&frame, at);
            return 0;
        }
        return kind == LINE_KEYWORD ? KeywordLine(*row, SEC_Argument(line)) : DataLine(*row, line);
    }

    int Fini(int nextCode) const
    {
        if (reading->open == nullptr) return 0;
        FinishKeyword();
        if (nextCode != NOT_KEY && (nextCode == opener || reading->Find(nextCode) == nullptr))
            Close();
        return 1;
    }

    void Close() const
    {
        if (reading->open == nullptr) return;
        FinishKeyword();
        const PlaceClosing closing(subject, reading->open);
        if (end != nullptr) end(reading->open);
        *reading = {};
    }

    void FreeList(Record* head) const
    {
        SEC_FreeList(head, [this](Record* record) {
            const bool isOpen = record == reading->open;
            release(record);
            if (isOpen) *reading = {};
        });
    }

private:
    int KeywordLine(const Row& row, char* text) const
    {
        FinishKeyword();
        reading->keyword = &row;
        reading->isRepeated = !reading->Mark(row);
        reading->dataLines = 0;
        if (judge != nullptr && !judge(reading->open, row, text)) return 0;
        const unsigned refused = reading->isRepeated ? row.flags & (SEC_ONCE | SEC_ONCE_LINES) : 0;
        if (refused != 0) reading->skips = static_cast<bool>(row.data);
        if (refused == SEC_ONCE) return 0;
        return row.begin ? row.begin(reading->open, text) : 1;
    }

    int DataLine(const Row& row, char* line) const
    {
        if (reading->skips) return 0;
        if (!row.data) {
            ERRLOG_LineErrorNew(frame.noData, SEC_KeywordName(row.code));
            return 0;
        }
        ++reading->dataLines;
        return row.data(reading->open, line);
    }

    void FinishKeyword() const
    {
        const Row* row = reading->keyword;
        if (row != nullptr && row->finish != nullptr && !reading->skips) row->finish(reading->open);
        reading->keyword = nullptr;
        reading->skips = false;
    }
};

#endif
