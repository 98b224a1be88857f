// [Component]: its record, and the way of its lines to its parts.
#include "IbisParser/cmpnt.h"

#include "IbisParser/errlog.h"
#include "IbisParser/read/component/cmpnt.h"

static const char s_Module[] = "IbisParser/cmpnt";
static const SecFrame s_frame = {s_Module, 500, 501, 502, 503, 504, 505};

static Cmpnt* s_open = nullptr;

// What a keyword of the component means to its reading.
struct CmpntKeyword {
    KeywordCode code;
    unsigned duplicate;  // message of a second one; 0: any number may come
    int isOnce;          // a second one is not read
    int afterPin;        // names pins, which [Pin] must list before
    int hasText;         // text may follow the keyword
    unsigned empty;      // message when no data line came; 0: none
    int (*begin)(Cmpnt*, const char*);
    int (*data)(Cmpnt*, const char*);  // null: no data lines
};

// A block that an end keyword closes.
struct CmpntBlock {
    KeywordCode begin;
    KeywordCode end;
    unsigned alone;  // error: the end without a beginning
    int (*finish)(Cmpnt*);
    int (*abandon)(Cmpnt*);  // finishes it with the message that it is not closed
};

static const CmpntBlock s_blocks[] = {
    {KEY_ALTERNATE_PACKAGE_MODELS, KEY_END_ALTERNATE_PACKAGE_MODELS, 607, APKG_End, APKG_Fini},
    {KEY_NODE_DECLARATIONS, KEY_END_NODE_DECLARATIONS, 2907, NODE_End, NODE_Fini},
    {KEY_CIRCUIT_CALL, KEY_END_CIRCUIT_CALL, 3711, CIRCUIT_End, CIRCUIT_Fini},
    {KEY_BEGIN_EMI_COMPONENT, KEY_END_EMI_COMPONENT, 808, CMPNTEMI_End, CMPNTEMI_Fini},
};

static const CmpntBlock* s_findBlock(int code)
{
    for (const CmpntBlock& block : s_blocks)
        if (block.begin == code || block.end == code) return &block;
    return nullptr;
}

static int s_isFound(const Cmpnt* component, int code)
{
    return (component->found >> (code - KEY_COMPONENT) & 1) != 0;
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
    CmnArgs args;
    if (!KRNG_Split(line, 2, &args)) return 0;
    const CmpntLocationRow* row =
        args.nStored > 0 ? SEC_FindRow(s_locations, args.argv[0]) : nullptr;
    if (row == nullptr)
        ERRLOG_LineErrorNew(519, args.nStored > 0 ? args.argv[0] : line);
    else
        s_setLocation(component, row, args.nStored > 1 ? args.argv[1] : "");
    CMN_ArgFree(&args);
    return row != nullptr;
}

static int s_manufacturer(Cmpnt* component, const char* text)
{
    CMN_SetStr(component->manufacturer, text, SIZE_NAME, "Manufacturer");
    return CMN_ReservedWordErr(text);
}

static int s_packageModel(Cmpnt* component, const char* text)
{
    CMN_SetStr(component->packageModel, text, SIZE_NAME, "Package Model");
    return CMN_ReservedWordErr(text);
}

static int s_beginPackage(Cmpnt* component, const char*)
{
    return PKG_New(&component->package);
}

static int s_packageLine(Cmpnt* component, const char* line)
{
    return component->package != nullptr && PKG_ReceiveLine(component->package, line);
}

static int s_beginNothing(Cmpnt*, const char*)
{
    return 1;
}

static int s_emiTable(Cmpnt* component, const char* text)
{
    CmpntReading* reading = component->reading;
    if (reading->openBlock == KEY_BEGIN_EMI_COMPONENT)
        return CMPNTEMI_KeywordLine(component, reading->current, text);
    ERRLOG_LineErrorNew(528, SEC_KeywordName(reading->current));
    reading->skipsData = 1;
    return 0;
}

static int s_emiLine(Cmpnt* component, const char* line)
{
    return CMPNTEMI_ReceiveLine(component, component->reading->current, line);
}

static int s_endBlock(Cmpnt* component, const char*)
{
    CmpntReading* reading = component->reading;
    const CmpntBlock* block = s_findBlock(reading->current);
    if (reading->openBlock == block->begin) {
        reading->openBlock = 0;
        return block->finish(component);
    }
    if (s_isFound(component, block->begin))
        ERRLOG_LineErrorNew(526, SEC_KeywordName(block->end), SEC_KeywordName(block->begin));
    else
        ERRLOG_LineErrorNew(block->alone);
    return 0;
}

// clang-format off
static const CmpntKeyword s_keywords[] = {
//    code                             twice once pins text empty  keyword line         data line
    { KEY_COMPONENT,                      0,   0,   0,   1,    0,  s_beginComponent,    s_subParameter      },
    { KEY_MANUFACTURER,                 506,   1,   0,   1,    0,  s_manufacturer,      nullptr             },
    { KEY_PACKAGE,                      507,   1,   0,   0,    0,  s_beginPackage,      s_packageLine       },
    { KEY_PIN,                          508,   0,   0,   1,  524,  PIN_KeywordLine,     PIN_ReceiveLine     },
    { KEY_PACKAGE_MODEL,                509,   1,   0,   1,    0,  s_packageModel,      nullptr             },
    { KEY_PIN_MAPPING,                  510,   0,   1,   1,  524,  PINMAP_KeywordLine,  PINMAP_ReceiveLine  },
    { KEY_DIFF_PIN,                     511,   0,   1,   1,  529,  DIFFPIN_KeywordLine, DIFFPIN_ReceiveLine },
    { KEY_SERIES_PIN_MAPPING,           512,   0,   1,   1,  529,  SERMAP_KeywordLine,  SERMAP_ReceiveLine  },
    { KEY_SERIES_SWITCH_GROUPS,         513,   0,   1,   0,  529,  s_beginNothing,      SERMAP_GroupLine    },
    { KEY_ALTERNATE_PACKAGE_MODELS,     514,   0,   0,   1,    0,  APKG_Begin,          APKG_ReceiveLine    },
    { KEY_END_ALTERNATE_PACKAGE_MODELS,   0,   0,   0,   0,    0,  s_endBlock,          nullptr             },
    { KEY_NODE_DECLARATIONS,            515,   0,   1,   0,    0,  NODE_Begin,          NODE_ReceiveLine    },
    { KEY_END_NODE_DECLARATIONS,          0,   0,   0,   0,    0,  s_endBlock,          nullptr             },
    { KEY_CIRCUIT_CALL,                   0,   0,   1,   1,    0,  CIRCUIT_New,         CIRCUIT_ReceiveLine },
    { KEY_END_CIRCUIT_CALL,               0,   0,   0,   0,    0,  s_endBlock,          nullptr             },
    { KEY_BEGIN_EMI_COMPONENT,          516,   0,   0,   0,    0,  CMPNTEMI_Begin,      s_emiLine           },
    { KEY_END_EMI_COMPONENT,              0,   0,   0,   0,    0,  s_endBlock,          nullptr             },
    { KEY_PIN_EMI,                        0,   0,   1,   1,  529,  s_emiTable,          s_emiLine           },
    { KEY_PIN_DOMAIN_EMI,                 0,   0,   0,   1,  529,  s_emiTable,          s_emiLine           },
};
// clang-format on

static const CmpntKeyword* s_findKeyword(int code)
{
    for (const CmpntKeyword& row : s_keywords)
        if (row.code == code) return &row;
    return nullptr;
}

// A block that waits for its end keyword is left when a keyword comes that cannot stand in it.
static void s_leaveBlock(Cmpnt* component, int nextCode)
{
    CmpntReading* reading = component->reading;
    const CmpntBlock* block = s_findBlock(reading->openBlock);
    if (block == nullptr || nextCode == block->end) return;
    if (block->begin == KEY_BEGIN_EMI_COMPONENT &&
        (nextCode == KEY_PIN_EMI || nextCode == KEY_PIN_DOMAIN_EMI))
        return;
    reading->openBlock = 0;
    block->abandon(component);
}

// Finishes the keyword being read.
static void s_finishKeyword(Cmpnt* component)
{
    CmpntReading* reading = component->reading;
    const CmpntKeyword* row = s_findKeyword(reading->current);
    reading->current = NOT_KEY;
    if (row == nullptr) return;
    const char* name = SEC_KeywordName(row->code);
    if (row->empty == 524 && reading->dataLines == 0)
        ERRLOG_LineErrorNew(524, name, component->name);
    if (row->empty == 529 && reading->dataLines == 0 && !reading->skipsData)
        ERRLOG_LineWarnNew(529, name, component->name);
    if (row->code == KEY_PACKAGE && !reading->skipsData && component->package != nullptr)
        PKG_Fini(component->package, component->name);
    if (row->code == KEY_SERIES_SWITCH_GROUPS) SERMAP_Fini(component);
}

// Tables that came before [Pin] are joined to its pins now.
static void s_joinPins(Cmpnt* component)
{
    for (const PinMap* row = component->pinMap; row != nullptr; row = row->next) {
        Pin* pin = CMPNT_FindPin(component, row->name);
        if (pin != nullptr && pin->mapping == nullptr) pin->mapping = row;
    }
    for (const DiffPin* pair = component->diffPins; pair != nullptr; pair = pair->next)
        for (const char* name : {pair->name, pair->invPin}) {
            Pin* pin = CMPNT_FindPin(component, name);
            if (pin != nullptr && pin->pair == nullptr) pin->pair = pair;
        }
}

static void s_freeReading(Cmpnt* component)
{
    CmpntReading* reading = component->reading;
    if (reading == nullptr) return;
    SERMAP_Fini(component);
    for (SecSet* set :
         {&reading->names, &reading->alternates, &reading->nodes, &reading->seriesPairs,
          &reading->switchStates, &reading->emiPins, &reading->emiDomains})
        SEC_SetClear(set);
    SEC_FreeRecord(reading);
    component->reading = nullptr;
}

// The end of the record.
static void s_close(void)
{
    Cmpnt* component = s_open;
    s_finishKeyword(component);
    const CmpntBlock* block = s_findBlock(component->reading->openBlock);
    if (block != nullptr) {
        ERRLOG_LineErrorNew(525, SEC_KeywordName(block->begin), component->name,
                            SEC_KeywordName(block->end));
        block->finish(component);
    }
    for (const int code : {KEY_MANUFACTURER, KEY_PACKAGE, KEY_PIN})
        if (!s_isFound(component, code))
            ERRLOG_LineErrorNew(523, SEC_KeywordName(code), component->name);
    s_joinPins(component);
    s_freeReading(component);
    s_open = nullptr;
}

static void s_free(Cmpnt* component)
{
    if (component == s_open) s_open = nullptr;
    s_freeReading(component);
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

int CMPNT_Init(void)
{
    if (s_open != nullptr) s_close();
    IbisRoot* root = SEC_Root(&s_frame, __LINE__);
    if (root == nullptr) return 0;
    Cmpnt* component = static_cast<Cmpnt*>(SEC_NewRecord(&s_frame, sizeof(Cmpnt)));
    if (component == nullptr) return 0;
    component->reading = static_cast<CmpntReading*>(SEC_NewRecord(&s_frame, sizeof(CmpntReading)));
    if (component->reading == nullptr) {
        s_free(component);
        return 0;
    }
    component->line = PARSE_GetLineNum();
    component->reading->current = NOT_KEY;
    s_open = component;
    return IBIS_AddCmpnt(root, component);
}

static int s_keywordLine(Cmpnt* component, int code, const char* text)
{
    const CmpntKeyword* row = s_findKeyword(code);
    if (row == nullptr) {
        SEC_UnknownKeyword(&s_frame, __LINE__);
        return 0;
    }
    CmpntReading* reading = component->reading;
    s_finishKeyword(component);
    s_leaveBlock(component, code);
    reading->current = code;
    reading->dataLines = 0;
    reading->skipsData = 0;
    const char* name = SEC_KeywordName(code);
    const int isFirst = SEC_MarkFound(&component->found, code - KEY_COMPONENT);
    if (!isFirst && row->duplicate != 0) ERRLOG_LineErrorNew(row->duplicate, component->name);
    if (row->afterPin && !s_isFound(component, KEY_PIN))
        ERRLOG_LineErrorNew(518, name, component->name);
    if (!row->hasText) SEC_IgnoreText(517, text, name);
    if (!isFirst && row->isOnce) {
        reading->skipsData = row->data != nullptr;
        return 0;
    }
    const CmpntBlock* block = s_findBlock(code);
    if (block != nullptr && block->begin == code) reading->openBlock = code;
    return row->begin(component, text);
}

static int s_dataLine(Cmpnt* component, const char* line)
{
    CmpntReading* reading = component->reading;
    const CmpntKeyword* row = s_findKeyword(reading->current);
    if (row == nullptr || reading->skipsData) return 0;
    ++reading->dataLines;
    if (row->data == nullptr) {
        ERRLOG_LineErrorNew(527, SEC_KeywordName(row->code));
        return 0;
    }
    return row->data(component, line);
}

int CMPNT_ReceiveLine(int kind, int code, char* line)
{
    CMN_ASSERT(line != nullptr);
    // A late [Manufacturer] of a package model comes here; the record that began last has it.
    const PkgMdl* package = code == KEY_MANUFACTURER ? PKGMDL_GetOpen() : nullptr;
    if (package != nullptr && (s_open == nullptr || package->line > s_open->line))
        return PKGMDL_ReceiveLine(kind, KEY_PKGMDL_MANUFACTURER, line);
    if (!SEC_Receives(&s_frame, __LINE__, kind, s_open)) return 0;
    return kind == LINE_KEYWORD ? s_keywordLine(s_open, code, SEC_Argument(line))
                                : s_dataLine(s_open, line);
}

int CMPNT_Fini(int nextCode)
{
    if (s_open == nullptr) return 1;
    s_finishKeyword(s_open);
    // An unknown keyword may belong to the component in a later version.
    if (nextCode != NOT_KEY && (nextCode == KEY_COMPONENT || s_findKeyword(nextCode) == nullptr))
        s_close();
    return 1;
}

void CMPNT_FreeList(Cmpnt* head)
{
    SEC_FreeList(head, s_free);
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

Cmpnt* CMPNT_GetOpen(void)
{
    return s_open;
}

int CMPNT_Close(void)
{
    if (s_open != nullptr) s_close();
    return 1;
}
