// [Begin Board Description] with its pin list, paths and reference designators.
#include "IbisParser/ebdmdl.h"

#include <climits>
#include <cstddef>
#include <cstring>
#include <iterator>

#include "IbisParser/base/token.h"
#include "IbisParser/cmn.h"
#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"
#include "IbisParser/read/package/board.h"
#include "IbisParser/store/section.h"

static const char s_Module[] = "IbisParser/ebdmdl";
static const SecFrame s_frame = {s_Module, 4300, 4301, 4302, 4303, 4304, 4305};

static EbdMdl* s_open = nullptr;
static int s_keyword = NOT_KEY;        // the open record's current one
static int s_isRepeated = 0;           // it was met before; its data lines are passed over
static int s_hasLateManufacturer = 0;  // one that the reader took for a component's
static EbdPath* s_path = nullptr;      // path being read
static int s_pinLines = 0;

static bool s_hasFound(int code)
{
    return (s_open->found >> (code - KEY_BEGIN_BOARD_DESCRIPTION) & 1u) != 0;
}

// Supply pins are told by the beginning of their signal's name.
static int s_pinKind(const char* signal)
{
    if (CMN_StrSameICn(signal, "GND", 3) || CMN_StrSameICn(signal, "POWER", 5))
        return EBDPIN_SUPPLY;
    return CMN_StrSameIC(signal, "NC") ? EBDPIN_NC : EBDPIN_SIGNAL;
}

// Paths.

static void s_checkPathPin(EbdPath* path, const SectItem* item)
{
    EbdPin* pin = EBDMDL_FindPin(s_open, item->text);
    if (pin == nullptr) {
        // Without a pin list there is nothing to be missing from.
        if (s_hasFound(KEY_PIN_LIST)) ERRLOG_LineErrorNew(4323, path->name, item->text);
        return;
    }
    if (pin->kind != EBDPIN_SIGNAL)
        ERRLOG_LineWarnNew(4325, path->name, pin->name,
                           pin->kind == EBDPIN_SUPPLY ? "supply" : "NC");
    else if (pin->path != nullptr)
        ERRLOG_LineErrorNew(4324, path->name, pin->name, pin->path->name);
    if (pin->path == nullptr) pin->path = path;
}

static void s_checkPathBegin(const EbdPath* path)
{
    const int kind = path->path.head->kind;
    if (kind == SECT_PIN) return;
    // A path between components begins with one of them.
    if (kind == SECT_NODE)
        ERRLOG_LineWarnNew(4322, path->name);
    else
        ERRLOG_LineErrorNew(4322, path->name);
}

static void s_endPath()
{
    EbdPath* path = s_path;
    s_path = nullptr;
    if (path == nullptr || !SECT_End(&path->path)) return;
    s_checkPathBegin(path);
    IdxTable nodes = {nullptr, 0, 0};
    int points = 0;
    for (const SectItem* item = path->path.head; item != nullptr; item = item->next) {
        if (item->kind != SECT_PIN && item->kind != SECT_NODE) continue;
        ++points;
        if (item->kind == SECT_PIN) {
            s_checkPathPin(path, item);
        } else if (item->text[0] != '\0') {
            if (IDX_FindName(&nodes, item->text) != nullptr)
                ERRLOG_LineErrorNew(4331, path->name, item->text);
            void** value = nullptr;
            if (IDX_SlotName(&nodes, item->text, &value)) *value = path;
        }
    }
    IDX_Clear(&nodes);
    if (points < 2) ERRLOG_LineErrorNew(4326, path->name);
}

static EbdPath* s_newPath()
{
    EbdPath* path = static_cast<EbdPath*>(SEC_NewRecord(&s_frame, sizeof(EbdPath)));
    if (path == nullptr) return nullptr;
    path->line = PARSE_GetLineNum();
    if (s_open->lastPath != nullptr)
        s_open->lastPath->next = path;
    else
        s_open->paths = path;
    s_open->lastPath = path;
    return path;
}

static void s_beginPath(char* text)
{
    EbdPath* path = s_newPath();
    if (path == nullptr) return;
    if (TOKEN_Count(text) > 1) ERRLOG_LineErrorNew(4320, text);
    const char* name = TOKEN_Next(&text);
    if (name == nullptr) {
        name = "";
        ERRLOG_LineErrorNew(1913, SEC_KeywordName(KEY_PATH_DESCRIPTION));
    }
    if (!SEC_CopyName(path->name, name, SIZE_NAME))
        ERRLOG_LineErrorNew(4319, name, static_cast<int>(SIZE_NAME));
    SECT_Begin(&path->path, SECT_BOARD_PATH, path->name);
    s_path = path;
    void** value = nullptr;
    if (path->name[0] == '\0' || !IDX_SlotName(s_open->pathIndex, path->name, &value)) return;
    if (*value != nullptr)
        ERRLOG_LineErrorNew(4321, path->name);
    else
        *value = path;
}

// Pins.

static int s_pinLine(char* line)
{
    const int columns = TOKEN_Count(line);
    if (columns != 2) {
        ERRLOG_LineErrorNew(4314, columns);
        return 0;
    }
    ++s_pinLines;
    char* name = TOKEN_Next(&line);
    const char* signal = TOKEN_Next(&line);
    if (std::strlen(name) > SIZE_BOARD_PIN) {
        ERRLOG_LineErrorNew(4315, name, static_cast<int>(SIZE_BOARD_PIN));
        name[SIZE_BOARD_PIN] = '\0';
    }
    if (EBDMDL_FindPin(s_open, name) != nullptr) {
        ERRLOG_LineErrorNew(4317, name);
        return 0;
    }
    EbdPin* pin = static_cast<EbdPin*>(SEC_NewRecord(&s_frame, sizeof(EbdPin)));
    if (pin == nullptr) return 0;
    SEC_CopyName(pin->name, name, SIZE_BOARD_PIN);
    if (!SEC_CopyName(pin->signal, signal, SIZE_NAME))
        ERRLOG_LineErrorNew(4316, signal, name, static_cast<int>(SIZE_NAME));
    pin->kind = s_pinKind(pin->signal);
    pin->line = PARSE_GetLineNum();
    if (s_open->lastPin != nullptr)
        s_open->lastPin->next = pin;
    else
        s_open->pins = pin;
    s_open->lastPin = pin;
    ++s_open->pinCount;
    void** value = nullptr;
    if (IDX_SlotName(s_open->pinIndex, pin->name, &value)) *value = pin;
    return 1;
}

static void s_beginPinList(char* text)
{
    char* header = text;
    CMN_TerminateEnd(header);
    if (!CMN_StrSameIC(header, "signal_name")) ERRLOG_LineErrorNew(4313, header);
}

// The end of the record.

static void s_finishKeyword()
{
    if (s_keyword == KEY_PATH_DESCRIPTION) s_endPath();
    s_keyword = NOT_KEY;
}

// Such a board needs no path.
bool EBDMDL_HasNoSignal(const EbdMdl* board)
{
    const EbdPin* pin = board->pins;
    while (pin != nullptr && pin->kind != EBDPIN_SIGNAL)
        pin = pin->next;
    return board->pins != nullptr && pin == nullptr;
}

static void s_checkRecord()
{
    const EbdMdl* board = s_open;
    static const int required[] = {KEY_EBDMDL_MANUFACTURER, KEY_EBDMDL_NUMBER_OF_PINS, KEY_PIN_LIST,
                                   KEY_PATH_DESCRIPTION};
    for (const int code : required) {
        const bool excused = (code == KEY_EBDMDL_MANUFACTURER && s_hasLateManufacturer) ||
                             (code == KEY_PATH_DESCRIPTION && EBDMDL_HasNoSignal(board));
        if (!s_hasFound(code) && !excused)
            ERRLOG_LineErrorNew(4310, board->name, SEC_KeywordName(code));
    }
    if (s_hasFound(KEY_PIN_LIST) && board->numberOfPins > 0 && s_pinLines != board->numberOfPins)
        ERRLOG_LineErrorNew(4318, board->name, s_pinLines, board->numberOfPins);
    if (!board->ended) ERRLOG_LineErrorNew(4329, board->name);
}

void EBDMDL_Close(void)
{
    if (s_open == nullptr) return;
    s_finishKeyword();
    s_checkRecord();
    s_open = nullptr;
}

// Keyword lines.

static void s_setName(char* text)
{
    CMN_SetStr(s_open->name, text, SIZE_NAME, SEC_KeywordName(KEY_BEGIN_BOARD_DESCRIPTION));
}

static void s_setManufacturer(char* text)
{
    CMN_SetStr(s_open->manufacturer, text, SIZE_NAME, SEC_KeywordName(KEY_EBDMDL_MANUFACTURER));
}

static void s_setNumberOfPins(char* text)
{
    unsigned value = 0;
    if (CMN_StrToUI(text, &value) == 1 && value > 0 && value <= INT_MAX)
        s_open->numberOfPins = static_cast<int>(value);
    else
        ERRLOG_LineErrorNew(4311, text);
}

static void s_beginMap(char* text)
{
    SEC_IgnoreText(4328, text, SEC_KeywordName(KEY_REFERENCE_DESIGNATOR_MAP));
}

static void s_receiveEnd(char* text)
{
    SEC_IgnoreText(4328, text, SEC_KeywordName(KEY_END_BOARD_DESCRIPTION));
    s_open->ended = 1;
    EBDMDL_Close();
}

// clang-format off
static const struct KeywordRow {
    int code;
    int duplicate;  // message of a second one, 0 where many are allowed
    int after;      // keyword that stands before it
    void (*receive)(char* text);
} s_rows[] = {
    { KEY_BEGIN_BOARD_DESCRIPTION,  0,    NOT_KEY,                   s_setName },
    { KEY_EBDMDL_MANUFACTURER,      4306, NOT_KEY,                   s_setManufacturer },
    { KEY_EBDMDL_NUMBER_OF_PINS,    4309, NOT_KEY,                   s_setNumberOfPins },
    { KEY_PIN_LIST,                 4307, KEY_EBDMDL_NUMBER_OF_PINS, s_beginPinList },
    { KEY_PATH_DESCRIPTION,         0,    KEY_PIN_LIST,              s_beginPath },
    { KEY_REFERENCE_DESIGNATOR_MAP, 4308, NOT_KEY,                   s_beginMap },
    { KEY_END_BOARD_DESCRIPTION,    0,    NOT_KEY,                   s_receiveEnd },
};
// clang-format on
static_assert(std::size(s_rows) == KEY_END_BOARD_DESCRIPTION - KEY_BEGIN_BOARD_DESCRIPTION + 1);

static int s_keywordLine(int code, char* line)
{
    if (code < KEY_BEGIN_BOARD_DESCRIPTION || code > KEY_END_BOARD_DESCRIPTION) {
        SEC_UnknownKeyword(&s_frame, __LINE__);
        return 0;
    }
    const KeywordRow& row = s_rows[code - KEY_BEGIN_BOARD_DESCRIPTION];
    s_finishKeyword();
    s_keyword = code;
    s_isRepeated = row.duplicate != 0 && s_hasFound(code);
    if (s_isRepeated) {
        ERRLOG_LineErrorNew(static_cast<unsigned>(row.duplicate));
        return 0;
    }
    // Once per keyword: every path of a board without pin list would repeat it.
    const int isFirst = SEC_MarkFound(&s_open->found, code - KEY_BEGIN_BOARD_DESCRIPTION);
    if (isFirst && row.after != NOT_KEY && !s_hasFound(row.after))
        ERRLOG_LineErrorNew(4312, SEC_KeywordName(code), SEC_KeywordName(row.after), s_open->name);
    row.receive(SEC_Argument(line));
    return 1;
}

static int s_dataLine(char* line)
{
    if (s_isRepeated) return 0;
    switch (s_keyword) {
        case KEY_PIN_LIST:
            return s_pinLine(line);
        case KEY_PATH_DESCRIPTION:
            return s_path != nullptr && SECT_ReceiveLine(&s_path->path, line);
        case KEY_REFERENCE_DESIGNATOR_MAP:
            return REFDES_ReceiveLine(s_open, line);
        default:
            ERRLOG_LineErrorNew(4327, SEC_KeywordName(s_keyword));
            return 0;
    }
}

static IdxTable* s_newIndex()
{
    return static_cast<IdxTable*>(SEC_NewRecord(&s_frame, sizeof(IdxTable)));
}

static void s_freeIndex(IdxTable* index)
{
    if (index == nullptr) return;
    IDX_Clear(index);
    SEC_FreeRecord(index);
}

static void s_freeRecord(EbdMdl* board)
{
    if (board == s_open) {
        s_open = nullptr;
        s_path = nullptr;
    }
    SEC_FreeList(board->pins, SEC_FreeRecord<EbdPin>);
    SEC_FreeList(board->paths, [](EbdPath* path) {
        SECT_FreeList(&path->path);
        SEC_FreeRecord(path);
    });
    REFDES_FreeList(board->map);
    s_freeIndex(board->pinIndex);
    s_freeIndex(board->pathIndex);
    s_freeIndex(board->refDesIndex);
    SEC_FreeRecord(board);
}

int EBDMDL_Init(void)
{
    EBDMDL_Close();
    IbisRoot* root = SEC_Root(&s_frame, __LINE__);
    if (root == nullptr) return 0;
    EbdMdl* board = static_cast<EbdMdl*>(SEC_NewRecord(&s_frame, sizeof(EbdMdl)));
    if (board == nullptr) return 0;
    board->line = PARSE_GetLineNum();
    board->numberOfPins = -1;
    board->pinIndex = s_newIndex();
    board->pathIndex = s_newIndex();
    board->refDesIndex = s_newIndex();
    if (board->pinIndex == nullptr || board->pathIndex == nullptr ||
        board->refDesIndex == nullptr) {
        s_freeRecord(board);
        return 0;
    }
    IBIS_AddEbdMdl(root, board);
    s_open = board;
    s_keyword = NOT_KEY;
    s_isRepeated = 0;
    s_hasLateManufacturer = 0;
    s_pinLines = 0;
    return 1;
}

int EBDMDL_ReceiveLine(int kind, int code, char* line)
{
    CMN_ASSERT(line != nullptr);
    if (s_open == nullptr && kind == LINE_KEYWORD && code == KEY_END_BOARD_DESCRIPTION) {
        ERRLOG_LineErrorNew(4330);
        return 0;
    }
    if (!SEC_Receives(&s_frame, __LINE__, kind, s_open)) return 0;
    return kind == LINE_KEYWORD ? s_keywordLine(code, line) : s_dataLine(line);
}

int EBDMDL_Fini(int nextCode)
{
    if (s_open == nullptr) return 0;
    const bool isLateManufacturer = nextCode == KEY_MANUFACTURER && !s_hasFound(KEY_PIN_LIST);
    if (isLateManufacturer) s_hasLateManufacturer = 1;
    const bool staysOpen =
        nextCode > KEY_BEGIN_BOARD_DESCRIPTION && nextCode <= KEY_END_BOARD_DESCRIPTION;
    if (staysOpen || isLateManufacturer || nextCode == NOT_KEY)
        s_finishKeyword();
    else
        EBDMDL_Close();
    return 1;
}

void EBDMDL_FreeList(EbdMdl* head)
{
    SEC_FreeList(head, s_freeRecord);
}

int EBDMDL_AddLink(EbdMdl** head, EbdMdl* item)
{
    CMN_ASSERT(head != nullptr && item != nullptr);
    return SEC_AddLink(head, item);
}

EbdMdl* EBDMDL_FindByName(EbdMdl* head, const char* name)
{
    CMN_ASSERT(name != nullptr);
    return SEC_FindByName(head, name);
}

EbdPin* EBDMDL_FindPin(const EbdMdl* board, const char* name)
{
    CMN_ASSERT(board != nullptr && name != nullptr);
    if (board->pinIndex == nullptr) return nullptr;
    return static_cast<EbdPin*>(IDX_FindName(board->pinIndex, name));
}
