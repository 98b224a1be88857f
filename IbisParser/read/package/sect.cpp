// The path language: "Len = 0.5 L = 8n C = 3p /", Fork, Endfork, and on boards Pin and Node.
#include "IbisParser/sect.h"

#include <cmath>
#include <cstring>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/base/token.h"
#include "IbisParser/cmn.h"
#include "IbisParser/parse.h"
#include "IbisParser/store/section.h"

static const char s_Module[] = "IbisParser/sect";

// clang-format off
static const struct PathWord { const char* name; int kind; } s_pathWords[] = {
    { "Fork",    SECT_FORK },
    { "Endfork", SECT_ENDFORK },
    { "Pin",     SECT_PIN },
    { "Node",    SECT_NODE },
};

// Values of a section, in the order of the codes of CMN_gettok from 1. A lumped value above
// `usual` (ohm, farad, henry) is most likely a wrong scale letter.
static const struct SectionValue { const char* name; RngSingle SectItem::* value; double usual; }
s_values[] = {
    { "Len", &SectItem::Len, 0 },
    { "R",   &SectItem::R,   1e3 },
    { "C",   &SectItem::C,   10e-9 },
    { "L",   &SectItem::L,   10e-6 },
};
// clang-format on

enum { TOK_ERROR = 0, TOK_SLASH = 5, TOK_END = 6 };

// The length of the word that the text begins with, which ends as those of CMN_gettok do.
static std::size_t s_wordLength(const char* text)
{
    return std::strcspn(text, " \t\r\n\v\f=/");
}

static const PathWord* s_findWord(const char* text)
{
    const std::size_t length = s_wordLength(text);
    for (const PathWord& row : s_pathWords)
        if (std::strlen(row.name) == length && CMN_StrSameICn(row.name, text, length)) return &row;
    return nullptr;
}

static SectItem* s_newItem(int kind)
{
    void* block = nullptr;
    if (!CMN_malloc(&block, sizeof(SectItem))) {
        ERRLOG_BugNew(4200, s_Module, __LINE__);
        return nullptr;
    }
    SectItem* item = static_cast<SectItem*>(block);
    item->kind = kind;
    item->line = PARSE_GetLineNum();
    return item;
}

static void s_append(SectPath* path, SectItem* item)
{
    item->depth = path->depth;
    if (path->tail != nullptr)
        path->tail->next = item;
    else
        path->head = item;
    path->tail = item;
}

static void s_keepSection(SectPath* path)
{
    s_append(path, path->open);
    path->open = nullptr;
    ++path->count;
}

// The "/" of a section.
static void s_endSection(SectPath* path)
{
    const SectItem* section = path->open;
    if (section->Len.state == CELL_ABSENT) ERRLOG_LineErrorNew(4201, path->name);
    if (section->L.state == CELL_ABSENT && section->R.state == CELL_ABSENT &&
        section->C.state == CELL_ABSENT)
        ERRLOG_LineWarnNew(4204, path->name);
    for (const SectionValue& row : s_values) {
        const RngSingle& cell = section->*row.value;
        if (cell.state != CELL_NUMBER) continue;
        if (cell.value < 0) ERRLOG_LineErrorNew(4203, row.name, path->name);
        const bool lumped = section->Len.state == CELL_NUMBER && section->Len.value == 0;
        if (lumped && row.usual > 0 && SEC_Exceeds(cell.value, row.usual))
            ERRLOG_LineWarnNew(4213, row.name, cell.value, path->name);
    }
    s_keepSection(path);
}

static void s_setValue(SectPath* path, const SectionValue& row, double value)
{
    if (path->open == nullptr) path->open = s_newItem(SECT_SECTION);
    if (path->open == nullptr) return;
    RngSingle* cell = &(path->open->*row.value);
    if (cell->state != CELL_ABSENT) {
        ERRLOG_LineErrorNew(4202, row.name, path->name);
        return;
    }
    cell->state = CELL_NUMBER;
    if (std::isfinite(value))
        cell->value = value;
    else
        ERRLOG_LineErrorNew(1909, row.name, std::isnan(value) ? "nan" : "inf");
}

// One token of a section; the result is where to go on.
static char* s_readSection(SectPath* path, char* text)
{
    double value = 0;
    char* next = text;
    const int token = CMN_gettok(text, &value, &next);
    if (token == TOK_END) return text + std::strlen(text);
    if (token == TOK_SLASH) {
        if (path->open != nullptr)
            s_endSection(path);
        else
            ERRLOG_LineWarnNew(4215, path->name);
        return next;
    }
    if (token != TOK_ERROR) {
        s_setValue(path, s_values[token - 1], value);
        return next;
    }
    // After a missing "=" the tokens up to the "/" were passed over: the section ends unjudged.
    if (next > text && next[-1] == '/') {
        if (path->open == nullptr) path->open = s_newItem(SECT_SECTION);
        if (path->open != nullptr) s_keepSection(path);
        return next;
    }
    // After an unknown name its "= value" belongs to the same mistake.
    next = TOKEN_SkipBlanks(next > text ? next : text);
    if (*next == '=') {
        next = TOKEN_SkipBlanks(next + 1);
        next += s_wordLength(next);
    }
    return next > text ? next : text + 1;
}

// "U1.14": the designator, one period, the pin.
static void s_setNode(SectItem* item, char* name)
{
    char* period = std::strchr(name, '.');
    if (period == nullptr || period == name || period[1] == '\0' ||
        std::strchr(period + 1, '.') != nullptr) {
        // The node stays as an end of the path, without a name to look up.
        ERRLOG_LineErrorNew(4210, name);
        return;
    }
    *period = '\0';
    if (!SEC_CopyName(item->text, name, SIZE_REFDES))
        ERRLOG_LineErrorNew(4211, name, static_cast<int>(SIZE_REFDES));
    *period = '.';
    const std::size_t length = std::strlen(item->text);
    CMN_SetStr(item->text + length, period, static_cast<unsigned>(SIZE_NAME - length), "Node");
}

static char* s_readPoint(SectPath* path, const PathWord* word, char* text)
{
    char* name = TOKEN_Next(&text);
    if (path->owner == SECT_PACKAGE_PIN) {
        ERRLOG_LineErrorNew(4209, word->name);
        return text;
    }
    if (name == nullptr) {
        ERRLOG_LineErrorNew(4212, word->name);
        return text;
    }
    SectItem* item = s_newItem(word->kind);
    if (item == nullptr) return text;
    PLACE_RememberAt(item, PLACE_At(name));
    if (word->kind == SECT_NODE)
        s_setNode(item, name);
    else
        CMN_SetStr(item->text, name, SIZE_NAME, word->name);
    s_append(path, item);
    return text;
}

static char* s_readWord(SectPath* path, const PathWord* word, char* text)
{
    if (path->open != nullptr) {
        ERRLOG_LineErrorNew(4205, word->name);
        s_endSection(path);
    }
    text += std::strlen(word->name);
    if (word->kind == SECT_PIN || word->kind == SECT_NODE) return s_readPoint(path, word, text);
    if (word->kind == SECT_ENDFORK) {
        if (path->depth == 0) {
            ERRLOG_LineErrorNew(4206, path->name);
            return text;
        }
        if (path->tail->kind == SECT_FORK) ERRLOG_LineWarnNew(4208, path->name);
        --path->depth;
    }
    SectItem* item = s_newItem(word->kind);
    if (item == nullptr) return text;
    s_append(path, item);
    if (word->kind == SECT_FORK) ++path->depth;
    return text;
}

// On a board something of the trunk must follow the last branch, or the trunk leads nowhere. The
// path of a package pin leads to its die pad in any case.
static bool s_endsWithBranch(const SectPath* path)
{
    if (path->owner == SECT_PACKAGE_PIN) return false;
    if (path->tail->kind != SECT_ENDFORK || path->depth > 0) return false;
    for (const SectItem* item = path->head; item != nullptr; item = item->next)
        if (item->depth == 0 && (item->kind == SECT_PIN || item->kind == SECT_NODE)) return false;
    return true;
}

int SECT_Begin(SectPath* path, int owner, const char* name)
{
    CMN_ASSERT(path != nullptr && name != nullptr);
    *path = {};
    path->owner = owner;
    path->name = name;
    return 1;
}

int SECT_ReceiveLine(SectPath* path, char* text)
{
    CMN_ASSERT(path != nullptr && text != nullptr);
    for (text = TOKEN_SkipBlanks(text); *text != '\0'; text = TOKEN_SkipBlanks(text)) {
        const PathWord* word = s_findWord(text);
        text = word != nullptr ? s_readWord(path, word, text) : s_readSection(path, text);
    }
    gbContinue = path->open != nullptr;
    return 1;
}

int SECT_End(SectPath* path)
{
    CMN_ASSERT(path != nullptr);
    // The reader has told of a section without "/".
    const bool unfinished = path->open != nullptr;
    if (unfinished) SEC_FreeRecord(path->open);
    path->open = nullptr;
    gbContinue = 0;
    if (path->head == nullptr) {
        if (!unfinished && path->owner == SECT_BOARD_PATH) ERRLOG_LineErrorNew(4214, path->name);
        return 0;
    }
    if (path->depth > 0) ERRLOG_LineErrorNew(4207, path->depth, path->name);
    if (s_endsWithBranch(path)) ERRLOG_LineWarnNew(4216, path->name);
    return 1;
}

int SECT_IsItem(const char* text)
{
    CMN_ASSERT(text != nullptr);
    if (*text == '/' || s_findWord(text) != nullptr) return 1;
    const std::size_t length = s_wordLength(text);
    const char* after = text + length;
    after += std::strspn(after, " \t");
    if (*after != '=') return 0;
    for (const SectionValue& row : s_values)
        if (std::strlen(row.name) == length && std::strncmp(row.name, text, length) == 0) return 1;
    return 0;
}

int SECT_Count(const SectPath* path)
{
    CMN_ASSERT(path != nullptr);
    return path->count;
}

void SECT_FreeList(SectPath* path)
{
    if (path == nullptr) return;
    SEC_FreeList(path->head, SEC_FreeRecord<SectItem>);
    if (path->open != nullptr) SEC_FreeRecord(path->open);
    *path = {};
}
