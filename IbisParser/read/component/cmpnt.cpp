// [Component]: its record, and the way of its lines to its parts.
#include "IbisParser/cmpnt.h"

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/read/component/cmpnt.h"

static const char s_Module[] = "IbisParser/cmpnt";
static const SecFrame s_frame = {s_Module, 500, 501, 502, 503, 504, 505, 527};

static CmpntReading s_reading;

// A block that an end keyword closes.
struct CmpntBlock {
    KeywordCode begin;
    KeywordCode end;
    ErrNumber<> alone;  // error: the end without a beginning
    int (*finish)(Cmpnt*);
    int (*abandon)(Cmpnt*);  // finishes it with the message that it is not closed
    bool tellsEnd;           // with that message also where the component ends in it
};

static const CmpntBlock s_blocks[] = {
    {KEY_ALTERNATE_PACKAGE_MODELS, KEY_END_ALTERNATE_PACKAGE_MODELS, 607, APKG_End, APKG_Fini,
     false},
    {KEY_NODE_DECLARATIONS, KEY_END_NODE_DECLARATIONS, 2907, NODE_End, NODE_Fini, false},
    {KEY_CIRCUIT_CALL, KEY_END_CIRCUIT_CALL, 3711, CIRCUIT_End, CIRCUIT_Fini, true},
    {KEY_BEGIN_EMI_COMPONENT, KEY_END_EMI_COMPONENT, 808, CMPNTEMI_End, CMPNTEMI_Fini, true},
};

static const CmpntBlock* s_findBlock(int code)
{
    for (const CmpntBlock& block : s_blocks)
        if (block.begin == code || block.end == code) return &block;
    return nullptr;
}

// Keyword lines and data lines that are the component's own.

static int s_beginComponent(Cmpnt* component, const char* text)
{
    CMN_SetStr(component->name, text, SIZE_NAME, "Component");
    return 1;
}

static const struct CmpntLocationRow {
    const char* name;
    int Cmpnt::*slot;
} s_locations[] = {
    {"Si_location", &Cmpnt::Si_location},
    {"Timing_location", &Cmpnt::Timing_location},
};

static void s_setLocation(Cmpnt* component, const CmpntLocationRow* row, const char* word)
{
    static const char* const words[] = {"Pin", "Die", nullptr};
    if (SEC_Version() < 3) ERRLOG_LineErrorNew(522, row->name);
    const int location = KRNG_Word(word, words);
    if (component->*row->slot != LOCATION_UNSET)
        ERRLOG_LineErrorNew(521, row->name, component->name);
    else if (location == LOCATION_UNSET)
        ERRLOG_LineErrorNew(520, row->name, word);
    else
        component->*row->slot = location;
}

static int s_subParameter(Cmpnt* component, const char* line)
{
    SecArgs args;
    if (!KRNG_Split(line, 2, &args)) return 0;
    const CmpntLocationRow* row =
        args.nStored > 0 ? SEC_FindRow(s_locations, args.argv[0]) : nullptr;
    if (row == nullptr)
        ERRLOG_LineErrorNew(519, args.nStored > 0 ? args.argv[0] : line);
    else
        s_setLocation(component, row, args.nStored > 1 ? args.argv[1] : "");
    return row != nullptr;
}

static int s_manufacturer(Cmpnt* component, const char* text)
{
    CMN_SetStr(component->manufacturer, text, SIZE_NAME, "Manufacturer");
    return CMN_ReservedWordErr(text);
}

static int s_packageModel(Cmpnt* component, const char* text)
{
    PLACE_Remember(component->packageModel);
    CMN_SetStr(component->packageModel, text, SIZE_NAME, "Package Model");
    return CMN_ReservedWordErr(text);
}

static int s_beginPackage(Cmpnt* component)
{
    return PKG_New(&component->package);
}

static int s_packageLine(Cmpnt* component, const char* line)
{
    return component->package != nullptr && PKG_ReceiveLine(component->package, line);
}

static int s_packageFini(Cmpnt* component)
{
    return component->package != nullptr && PKG_Fini(component->package, component->name);
}

// The end of a keyword that is nothing without data lines, and of one that says nothing then.

static int s_mustHaveLines(Cmpnt* component)
{
    if (s_reading.dataLines > 0) return 1;
    ERRLOG_LineErrorNew(524, SEC_KeywordName(s_reading.keyword->code), component->name);
    return 0;
}

static int s_shouldHaveLines(Cmpnt* component)
{
    if (s_reading.dataLines > 0) return 1;
    ERRLOG_LineWarnNew(529, SEC_KeywordName(s_reading.keyword->code), component->name);
    return 0;
}

static int s_groupsFini(Cmpnt* component)
{
    s_shouldHaveLines(component);
    return SERMAP_Fini(component);
}

static int s_emiTable(Cmpnt* component, const char* text)
{
    const int code = s_reading.keyword->code;
    if (s_reading.openBlock == KEY_BEGIN_EMI_COMPONENT)
        return CMPNTEMI_KeywordLine(component, code, text);
    ERRLOG_LineErrorNew(528, SEC_KeywordName(code));
    s_reading.skips = true;
    return 0;
}

static int s_emiLine(Cmpnt* component, const char* line)
{
    return CMPNTEMI_ReceiveLine(component, s_reading.keyword->code, line);
}

static int s_endBlock(Cmpnt* component)
{
    const CmpntBlock* block = s_findBlock(s_reading.keyword->code);
    if (s_reading.openBlock == block->begin) {
        s_reading.openBlock = 0;
        return block->finish(component);
    }
    if (s_reading.Has(block->begin))
        ERRLOG_LineErrorNew(526, SEC_KeywordName(block->end), SEC_KeywordName(block->begin));
    else
        ERRLOG_LineErrorNew(block->alone);
    return 0;
}

// clang-format off
static const CmpntKeyword s_keywords[] = {
    //                                     flags                keyword line         data line            finish               twice  after [Pin]
    { { KEY_COMPONENT,                     SEC_TEXT,            s_beginComponent,    s_subParameter,      nullptr           },    0,  false },
    { { KEY_MANUFACTURER,                  SEC_TEXT | SEC_ONCE, s_manufacturer,      nullptr,             nullptr           },  506,  false },
    { { KEY_PACKAGE,                       SEC_ONCE,            s_beginPackage,      s_packageLine,       s_packageFini     },  507,  false },
    { { KEY_PIN,                           SEC_TEXT,            PIN_KeywordLine,     PIN_ReceiveLine,     s_mustHaveLines   },  508,  false },
    { { KEY_PACKAGE_MODEL,                 SEC_TEXT | SEC_ONCE, s_packageModel,      nullptr,             nullptr           },  509,  false },
    { { KEY_PIN_MAPPING,                   SEC_TEXT,            PINMAP_KeywordLine,  PINMAP_ReceiveLine,  s_mustHaveLines   },  510,  true  },
    { { KEY_DIFF_PIN,                      SEC_TEXT,            DIFFPIN_KeywordLine, DIFFPIN_ReceiveLine, s_shouldHaveLines },  511,  true  },
    { { KEY_SERIES_SWITCH_GROUPS,          0,                   nullptr,             SERMAP_GroupLine,    s_groupsFini      },  513,  true  },
    { { KEY_SERIES_PIN_MAPPING,            SEC_TEXT,            SERMAP_KeywordLine,  SERMAP_ReceiveLine,  s_shouldHaveLines },  512,  true  },
    { { KEY_ALTERNATE_PACKAGE_MODELS,      SEC_TEXT,            APKG_Begin,          APKG_ReceiveLine,    nullptr           },  514,  false },
    { { KEY_END_ALTERNATE_PACKAGE_MODELS,  0,                   s_endBlock,          nullptr,             nullptr           },    0,  false },
    { { KEY_NODE_DECLARATIONS,             0,                   NODE_Begin,          NODE_ReceiveLine,    nullptr           },  515,  true  },
    { { KEY_END_NODE_DECLARATIONS,         0,                   s_endBlock,          nullptr,             nullptr           },    0,  false },
    { { KEY_CIRCUIT_CALL,                  SEC_TEXT,            CIRCUIT_New,         CIRCUIT_ReceiveLine, nullptr           },    0,  true  },
    { { KEY_END_CIRCUIT_CALL,              0,                   s_endBlock,          nullptr,             nullptr           },    0,  false },
    { { KEY_BEGIN_EMI_COMPONENT,           0,                   CMPNTEMI_Begin,      s_emiLine,           nullptr           },  516,  false },
    { { KEY_END_EMI_COMPONENT,             0,                   s_endBlock,          nullptr,             nullptr           },    0,  false },
    { { KEY_PIN_EMI,                       SEC_TEXT,            s_emiTable,          s_emiLine,           s_shouldHaveLines },    0,  true  },
    { { KEY_PIN_DOMAIN_EMI,                SEC_TEXT,            s_emiTable,          s_emiLine,           s_shouldHaveLines },    0,  false },
};
// clang-format on

// A block that waits for its end keyword is left when a keyword comes that cannot stand in it.
static void s_leaveBlock(Cmpnt* component, int nextCode)
{
    const CmpntBlock* block = s_findBlock(s_reading.openBlock);
    if (block == nullptr || nextCode == block->end) return;
    if (block->begin == KEY_BEGIN_EMI_COMPONENT &&
        (nextCode == KEY_PIN_EMI || nextCode == KEY_PIN_DOMAIN_EMI))
        return;
    s_reading.openBlock = 0;
    block->abandon(component);
}

static int s_judge(Cmpnt* component, const CmpntKeyword& row, char* text)
{
    const char* name = SEC_KeywordName(row.code);
    s_leaveBlock(component, row.code);
    if (s_reading.isRepeated && row.duplicate != 0)
        ERRLOG_LineErrorNew(row.duplicate, component->name);
    if (row.afterPin && !s_reading.Has(KEY_PIN)) ERRLOG_LineErrorNew(518, name, component->name);
    if ((row.flags & SEC_TEXT) == 0) SEC_IgnoreText(517, text, name);
    const CmpntBlock* block = s_findBlock(row.code);
    if (block != nullptr && block->begin == row.code) s_reading.openBlock = row.code;
    return 1;
}

// Tables that came before [Pin] are joined to its pins now.
static void s_joinPins(Cmpnt* component)
{
    const auto isBefore = [component](const auto* row) {
        return component->pins != nullptr && row->line < component->pins->line;
    };
    for (const PinMap* row = component->pinMap; row != nullptr; row = row->next) {
        if (!isBefore(row)) continue;
        Pin* pin = CMPNT_FindPin(component, row->name);
        if (pin != nullptr && pin->mapping == nullptr) pin->mapping = row;
    }
    for (const DiffPin* pair = component->diffPins; pair != nullptr; pair = pair->next) {
        if (!isBefore(pair)) continue;
        for (const char* name : {pair->name, pair->invPin}) {
            Pin* pin = CMPNT_FindPin(component, name);
            if (pin != nullptr && pin->pair == nullptr) pin->pair = pair;
        }
    }
    for (Circuit* call = component->calls; call != nullptr; call = call->next) {
        if (!isBefore(call)) continue;
        int place = 0;
        for (const char* name : {call->signalPin, call->diffPins[0], call->diffPins[1],
                                 call->seriesPins[0], call->seriesPins[1]})
            if (*name != '\0') call->pins[place++] = CMPNT_FindPin(component, name);
    }
}

static void s_end(Cmpnt* component)
{
    const CmpntBlock* block = s_findBlock(s_reading.openBlock);
    if (block != nullptr && block->tellsEnd) {
        block->abandon(component);
    } else if (block != nullptr) {
        ERRLOG_LineErrorNew(525, SEC_KeywordName(block->begin), component->name,
                            SEC_KeywordName(block->end));
        block->finish(component);
    }
    for (const int code : {KEY_MANUFACTURER, KEY_PACKAGE, KEY_PIN})
        if (!s_reading.Has(code)) ERRLOG_LineErrorNew(523, SEC_KeywordName(code), component->name);
    s_joinPins(component);
    SERMAP_Fini(component);
    component->reading = nullptr;
}

static void s_release(Cmpnt* component)
{
    if (component->reading != nullptr) SERMAP_Fini(component);
    PKG_Free(component->package);
    PIN_FreeList(component->pins);
    PINMAP_FreeList(component->pinMap);
    DIFFPIN_FreeList(component->diffPins);
    SERMAP_FreeList(component->seriesPins);
    SERMAP_FreeStates(component->switchStates);
    APKG_FreeList(component->alternates);
    NODE_FreeList(component->nodes);
    CIRCUIT_FreeList(component->calls);
    CMPNTEMI_Free(component->emi);
    if (component->pinIndex != nullptr) {
        IDX_Clear(component->pinIndex);
        SEC_FreeRecord(component->pinIndex);
    }
    SEC_FreeRecord(component);
}

static int s_prepare(Cmpnt* component)
{
    component->reading = &s_reading;
    return 1;
}

static const SecLife<CmpntReading> s_life = {
    .reading = &s_reading,
    .frame = s_frame,
    .opener = KEY_COMPONENT,
    .subject = SUBJECT_COMPONENT,
    .rows = s_keywords,
    .add = IBIS_AddCmpnt,
    .release = s_release,
    .prepare = s_prepare,
    .judge = s_judge,
    .end = s_end,
};

int CMPNT_Init()
{
    return s_life.Init();
}

int CMPNT_ReceiveLine(int kind, int code, char* line)
{
    return s_life.ReceiveLine(kind, code, line);
}

int CMPNT_Fini(int nextCode)
{
    return s_life.Fini(nextCode);
}

void CMPNT_FreeList(Cmpnt* head)
{
    s_life.FreeList(head);
}

int CMPNT_AddLink(Cmpnt** head, Cmpnt* item)
{
    CMN_ASSERT(head != nullptr && item != nullptr);
    return SEC_AddLink(head, item);
}

Cmpnt* CMPNT_FindByName(Cmpnt* head, const char* name)
{
    CMN_ASSERT(name != nullptr);
    return SEC_FindByName(head, name);
}

Cmpnt* CMPNT_GetOpen()
{
    return s_reading.open;
}

int CMPNT_Close()
{
    s_life.Close();
    return 1;
}
