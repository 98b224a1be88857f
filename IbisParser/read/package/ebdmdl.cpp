// [Begin Board Description] with its pin list, paths and reference designators.
#include "IbisParser/ebdmdl.h"

#include <cstddef>
#include <cstring>
#include <iterator>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/base/token.h"
#include "IbisParser/cmn.h"
#include "IbisParser/read/package/board.h"
#include "IbisParser/store/life.h"

static const char s_Module[] = "IbisParser/ebdmdl";
static const SecFrame s_frame = {s_Module, 4300, 4301, 4302, 4303, 4304, 4305, 4327};

struct EbdKeyword : SecKeyword<EbdMdl> {
    ErrNumber<> duplicate;  // message of a second one, 0 where many are allowed
    int after;              // keyword that stands before it
};

static struct EbdReading : SecReading<EbdMdl, EbdKeyword, &EbdMdl::found> {
    EbdPath* path = nullptr;  // being read
    int pinLines = 0;
} s_reading;

// Supply pins are told by the beginning of their signal's name.
static int s_pinKind(const char* signal)
{
    if (CMN_StrSameICn(signal, "GND", 3) || CMN_StrSameICn(signal, "POWER", 5))
        return EBDPIN_SUPPLY;
    return CMN_StrSameIC(signal, "NC") ? EBDPIN_NC : EBDPIN_SIGNAL;
}

// Paths.

static void s_checkPathPin(const EbdMdl* board, EbdPath* path, const SectItem* item)
{
    EbdPin* pin = EBDMDL_FindPin(board, item->text);
    if (pin == nullptr) {
        // Without a pin list there is nothing to be missing from.
        if (s_reading.Has(KEY_PIN_LIST)) ERRLOG_LineErrorNew(4323, path->name, item->text);
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
    const PlaceLogged at(path->path.head);
    const int kind = path->path.head->kind;
    if (kind == SECT_PIN) return;
    // A path between components begins with one of them.
    if (kind == SECT_NODE)
        ERRLOG_LineWarnNew(4322, path->name);
    else
        ERRLOG_LineErrorNew(4322, path->name);
}

static int s_endPath(EbdMdl* board)
{
    EbdPath* path = s_reading.path;
    s_reading.path = nullptr;
    if (path == nullptr) return 0;
    const PlaceScope at(SUBJECT_PATH, path);
    if (!SECT_End(&path->path)) return 0;
    s_checkPathBegin(path);
    IdxTable nodes = {nullptr, 0, 0};
    int points = 0;
    for (const SectItem* item = path->path.head; item != nullptr; item = item->next) {
        if (item->kind != SECT_PIN && item->kind != SECT_NODE) continue;
        ++points;
        const PlaceLogged in(item);
        if (item->kind == SECT_PIN) {
            s_checkPathPin(board, path, item);
        } else if (item->text[0] != '\0') {
            if (IDX_FindName(&nodes, item->text) != nullptr)
                ERRLOG_LineErrorNew(4331, path->name, item->text);
            void** value = nullptr;
            if (IDX_SlotName(&nodes, item->text, &value)) *value = path;
        }
    }
    IDX_Clear(&nodes);
    if (points < 2) ERRLOG_LineErrorNew(4326, path->name);
    return 1;
}

static EbdPath* s_newPath(EbdMdl* board)
{
    EbdPath* path = static_cast<EbdPath*>(SEC_NewRecord(&s_frame, sizeof(EbdPath)));
    if (path == nullptr) return nullptr;
    path->line = PARSE_GetLineNum();
    if (board->lastPath != nullptr)
        board->lastPath->next = path;
    else
        board->paths = path;
    board->lastPath = path;
    return path;
}

static int s_beginPath(EbdMdl* board, char* text)
{
    EbdPath* path = s_newPath(board);
    if (path == nullptr) return 0;
    const PlaceScope at(SUBJECT_PATH, path->name, {0, 0});
    if (TOKEN_Count(text) > 1) ERRLOG_LineErrorNew(4320, text);
    const char* name = TOKEN_Next(&text);
    if (name == nullptr) {
        name = "";
        ERRLOG_LineErrorNew(1913, SEC_KeywordName(KEY_PATH_DESCRIPTION));
    }
    if (!SEC_CopyName(path->name, name, SIZE_NAME))
        ERRLOG_LineErrorNew(4319, name, static_cast<int>(SIZE_NAME));
    SECT_Begin(&path->path, SECT_BOARD_PATH, path->name);
    s_reading.path = path;
    void** value = nullptr;
    if (path->name[0] == '\0' || !IDX_SlotName(board->pathIndex, path->name, &value)) return 1;
    if (*value != nullptr)
        ERRLOG_LineErrorNew(4321, path->name);
    else
        *value = path;
    return 1;
}

static int s_pathLine(EbdMdl*, char* line)
{
    EbdPath* path = s_reading.path;
    if (path == nullptr) return 0;
    const PlaceScope at(SUBJECT_PATH, path->name, {0, 0});
    return SECT_ReceiveLine(&path->path, line);
}

// Pins.

static int s_pinLine(EbdMdl* board, char* line)
{
    const int columns = TOKEN_Count(line);
    ++s_reading.pinLines;
    if (columns != 2) {
        ERRLOG_LineErrorNew(4314, columns);
        return 0;
    }
    const char* name = TOKEN_Next(&line);
    const PlaceScope at(SUBJECT_PIN, name, {0, 0});
    const char* signal = TOKEN_Next(&line);
    if (std::strlen(name) > SIZE_BOARD_PIN)
        ERRLOG_LineErrorNew(4315, name, static_cast<int>(SIZE_BOARD_PIN));
    if (EBDMDL_FindPin(board, name) != nullptr) {
        ERRLOG_LineErrorNew(4317, name);
        return 0;
    }
    EbdPin* pin = static_cast<EbdPin*>(SEC_NewRecord(&s_frame, sizeof(EbdPin)));
    if (pin == nullptr) return 0;
    SEC_KeepName(pin, name, SIZE_BOARD_PIN);
    if (!SEC_CopyName(pin->signal, signal, SIZE_NAME))
        ERRLOG_LineErrorNew(4316, signal, name, static_cast<int>(SIZE_NAME));
    pin->kind = s_pinKind(pin->signal);
    pin->line = PARSE_GetLineNum();
    if (board->lastPin != nullptr)
        board->lastPin->next = pin;
    else
        board->pins = pin;
    board->lastPin = pin;
    ++board->pinCount;
    void** value = nullptr;
    if (IDX_SlotName(board->pinIndex, SEC_WholeName(pin), &value)) *value = pin;
    return 1;
}

static int s_beginPinList(EbdMdl*, char* header)
{
    CMN_TerminateEnd(header);
    if (!CMN_StrSameIC(header, "signal_name")) ERRLOG_LineErrorNew(4313, header);
    return 1;
}

// The end of the record.

// Such a board needs no path.
bool EBDMDL_HasNoSignal(const EbdMdl* board)
{
    const EbdPin* pin = board->pins;
    while (pin != nullptr && pin->kind != EBDPIN_SIGNAL)
        pin = pin->next;
    return board->pins != nullptr && pin == nullptr;
}

static void s_end(EbdMdl* board)
{
    static const int required[] = {KEY_EBDMDL_MANUFACTURER, KEY_EBDMDL_NUMBER_OF_PINS, KEY_PIN_LIST,
                                   KEY_PATH_DESCRIPTION};
    for (const int code : required) {
        const bool excused = code == KEY_PATH_DESCRIPTION && EBDMDL_HasNoSignal(board);
        if (!s_reading.Has(code) && !excused)
            ERRLOG_LineErrorNew(4310, board->name, SEC_KeywordName(code));
    }
    if (s_reading.Has(KEY_PIN_LIST) && board->numberOfPins > 0 &&
        s_reading.pinLines != board->numberOfPins)
        ERRLOG_LineErrorNew(4318, board->name, s_reading.pinLines, board->numberOfPins);
    if (!board->ended) ERRLOG_LineErrorNew(4329, board->name);
}

// Keyword lines.

static int s_setName(EbdMdl* board, const char* text)
{
    CMN_SetStr(board->name, text, SIZE_NAME, SEC_KeywordName(KEY_BEGIN_BOARD_DESCRIPTION));
    return 1;
}

static int s_setManufacturer(EbdMdl* board, const char* text)
{
    CMN_SetStr(board->manufacturer, text, SIZE_NAME, SEC_KeywordName(KEY_EBDMDL_MANUFACTURER));
    return 1;
}

static int s_setNumberOfPins(EbdMdl* board, const char* text)
{
    int count = 0;
    if (SEC_ReadCount(text, &count) && count > 0)
        board->numberOfPins = count;
    else
        ERRLOG_LineErrorNew(4311, text);
    return 1;
}

static int s_receiveEnd(EbdMdl* board)
{
    board->ended = 1;
    EBDMDL_Close();
    return 1;
}

// clang-format off
static const EbdKeyword s_keywords[] = {
    //                                  flags                begin              data line           finish        twice  behind
    { { KEY_BEGIN_BOARD_DESCRIPTION,  SEC_TEXT,            s_setName,         nullptr,            nullptr   },     0,  NOT_KEY },
    { { KEY_EBDMDL_MANUFACTURER,      SEC_TEXT | SEC_ONCE, s_setManufacturer, nullptr,            nullptr   },  4306,  NOT_KEY },
    { { KEY_EBDMDL_NUMBER_OF_PINS,    SEC_TEXT | SEC_ONCE, s_setNumberOfPins, nullptr,            nullptr   },  4309,  NOT_KEY },
    { { KEY_PIN_LIST,                 SEC_TEXT | SEC_ONCE, s_beginPinList,    s_pinLine,          nullptr   },  4307,  KEY_EBDMDL_NUMBER_OF_PINS },
    { { KEY_PATH_DESCRIPTION,         SEC_TEXT,            s_beginPath,       s_pathLine,         s_endPath },     0,  KEY_PIN_LIST },
    { { KEY_REFERENCE_DESIGNATOR_MAP, SEC_ONCE,            nullptr,           REFDES_ReceiveLine, nullptr   },  4308,  NOT_KEY },
    { { KEY_END_BOARD_DESCRIPTION,    0,                   s_receiveEnd,      nullptr,            nullptr   },     0,  NOT_KEY },
};
// clang-format on

static int s_judge(EbdMdl* board, const EbdKeyword& row, char* text)
{
    const char* name = SEC_KeywordName(row.code);
    if (s_reading.isRepeated && row.duplicate != 0) {
        ERRLOG_LineErrorNew(row.duplicate);
        s_reading.skips = true;
        return 0;
    }
    // Once per keyword: every path of a board without pin list would repeat it.
    if (!s_reading.isRepeated && row.after != NOT_KEY && !s_reading.Has(row.after))
        ERRLOG_LineErrorNew(4312, name, SEC_KeywordName(row.after), board->name);
    if ((row.flags & SEC_TEXT) == 0) SEC_IgnoreText(4328, text, name);
    return 1;
}

static IdxTable* s_newIndex()
{
    return static_cast<IdxTable*>(SEC_NewRecord(&s_frame, sizeof(IdxTable)));
}

static int s_prepare(EbdMdl* board)
{
    board->numberOfPins = -1;
    board->pinIndex = s_newIndex();
    board->pathIndex = s_newIndex();
    board->refDesIndex = s_newIndex();
    return board->pinIndex != nullptr && board->pathIndex != nullptr &&
           board->refDesIndex != nullptr;
}

static void s_freeIndex(IdxTable* index)
{
    if (index == nullptr) return;
    IDX_Clear(index);
    SEC_FreeRecord(index);
}

static void s_release(EbdMdl* board)
{
    SEC_FreeList(board->pins, SEC_FreeNamed<EbdPin>);
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

static const SecLife<EbdReading> s_life = {
    .reading = &s_reading,
    .frame = s_frame,
    .opener = KEY_BEGIN_BOARD_DESCRIPTION,
    .subject = SUBJECT_BOARD,
    .rows = s_keywords,
    .add = IBIS_AddEbdMdl,
    .release = s_release,
    .prepare = s_prepare,
    .judge = s_judge,
    .end = s_end,
};

int EBDMDL_Init()
{
    return s_life.Init();
}

int EBDMDL_ReceiveLine(int kind, int code, char* line)
{
    const bool ends = kind == LINE_KEYWORD && code == KEY_END_BOARD_DESCRIPTION;
    if (ends && line != nullptr && s_reading.open == nullptr) {
        ERRLOG_LineErrorNew(4330);
        return 0;
    }
    return s_life.ReceiveLine(kind, code, line);
}

int EBDMDL_Fini(int nextCode)
{
    return s_life.Fini(nextCode);
}

void EBDMDL_Close()
{
    s_life.Close();
}

void EBDMDL_FreeList(EbdMdl* head)
{
    s_life.FreeList(head);
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
