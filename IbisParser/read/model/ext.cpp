// [External Circuit] and [External Model]: the lines that both are made of.
#include "IbisParser/ext.h"

#include "IbisParser/base/corner.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/read/component/cmpnt.h"
#include "IbisParser/read/model/ext.h"

static const char s_Module[] = "IbisParser/ext";
static const SecFrame s_frame = {s_Module, 3400, 3401, 3402, 3403, 3404, 3405};

// The circuit and the model's block that are being read.
static ExtReading s_circuit;
static ExtReading s_model;

// Digital languages know digital ports; the others reach them through conversions.
static const struct ExtLanguageRow {
    const char* name;
    ExtLanguage language;
    int isDigital;
} s_languages[] = {
    {"SPICE", LANGUAGE_SPICE, 0},
    {"VHDL-AMS", LANGUAGE_VHDL_AMS, 1},
    {"Verilog-AMS", LANGUAGE_VERILOG_AMS, 1},
    {"VHDL-A(MS)", LANGUAGE_VHDL_A, 0},
    {"Verilog-A(MS)", LANGUAGE_VERILOG_A, 0},
};

static const ExtLanguageRow* s_languageOf(const Ext* item)
{
    for (const ExtLanguageRow& row : s_languages)
        if (row.language == item->language) return &row;
    return nullptr;
}

bool EXT_IsDigital(const Ext* item)
{
    const ExtLanguageRow* row = s_languageOf(item);
    return row != nullptr && row->isDigital;
}

bool EXT_IsAnalog(const Ext* item)
{
    const ExtLanguageRow* row = s_languageOf(item);
    return row != nullptr && !row->isDigital;
}

const char* EXT_ConversionName(const ExtConversion* row)
{
    return row->toAnalog ? "D_to_A" : "A_to_D";
}

// A sub-parameter: its items after the name, -1 for any number.
struct ExtRow {
    const char* name;
    int items;
    void (*read)(ExtReading*, const CmnArgs*);
};

static void s_refuseConversion(const Ext* item, const ExtConversion* row)
{
    const ExtLanguageRow* language = s_languageOf(item);
    if (language != nullptr && language->isDigital)
        ERRLOG_LineErrorNew(3425, EXT_ConversionName(row), language->name);
}

static void s_readLanguage(ExtReading* reading, const CmnArgs* args)
{
    Ext* item = reading->open;
    if (item->language != LANGUAGE_UNSET) {
        ERRLOG_LineErrorNew(3412, reading->Title());
        return;
    }
    const ExtLanguageRow* row = SEC_FindRow(s_languages, args->argv[1]);
    if (row == nullptr) {
        ERRLOG_LineErrorNew(3413, args->argv[1]);
        reading->hasUnknownLanguage = true;
        return;
    }
    item->language = row->language;
    // Lines before this one are judged now.
    if (item->parameters != nullptr && row->language == LANGUAGE_SPICE) ERRLOG_LineErrorNew(3420);
    for (const ExtConversion* conversion = item->conversions; conversion != nullptr;
         conversion = conversion->next)
        s_refuseConversion(item, conversion);
}

static int s_cornerOf(const char* text)
{
    const int corner = CORNER_Find(text);
    if (corner < 0) ERRLOG_LineErrorNew(3415, text);
    return corner;
}

static void s_readCorner(ExtReading* reading, const CmnArgs* args)
{
    const int corner = s_cornerOf(args->argv[1]);
    if (corner < 0) return;
    for (const ExtCornerRow* row = reading->open->corners; row != nullptr; row = row->next)
        if (row->corner == corner) {
            ERRLOG_LineErrorNew(3416, CORNER_ShortTitle(corner));
            return;
        }
    if (CMN_AnyUpper(args->argv[2])) ERRLOG_LineWarnNew(3417, args->argv[2]);
    ExtCornerRow* row =
        static_cast<ExtCornerRow*>(SEC_NewPart(1908, s_Module, __LINE__, sizeof(ExtCornerRow)));
    if (row == nullptr) return;
    row->corner = corner;
    row->file = CMN_StrMake(args->argv[2]);
    row->circuit = CMN_StrMake(args->argv[3]);
    SEC_Append(&reading->open->corners, &reading->cornerTail, row);
}

static ExtName* s_newName(const char* text)
{
    ExtName* name = static_cast<ExtName*>(SEC_NewPart(1908, s_Module, __LINE__, sizeof(ExtName)));
    if (name == nullptr) return nullptr;
    PLACE_RememberAt(name, PLACE_At(text));
    SEC_KeepName(name, text, SIZE_NAME);
    return name;
}

static void s_readParameters(ExtReading* reading, const CmnArgs* args)
{
    if (reading->open->language == LANGUAGE_SPICE) ERRLOG_LineErrorNew(3420);
    if (args->nStored < 2) ERRLOG_LineErrorNew(3421, args->argv[0]);
    for (int i = 1; i < args->nStored; ++i) {
        ExtName* name = s_newName(args->argv[i]);
        if (name == nullptr) return;
        if (!SEC_SetAdd(&reading->parameters, args->argv[i])) {
            ERRLOG_LineErrorNew(3422, args->argv[i]);
            SEC_FreeNamed(name);
            continue;
        }
        SEC_Append(&reading->open->parameters, &reading->parameterTail, name);
    }
}

static int s_indexPort(Ext* item, ExtName* port)
{
    if (item->portIndex == nullptr)
        item->portIndex =
            static_cast<IdxTable*>(SEC_NewPart(1908, s_Module, __LINE__, sizeof(IdxTable)));
    void** value = nullptr;
    if (item->portIndex == nullptr || !IDX_SlotName(item->portIndex, SEC_WholeName(port), &value))
        return 0;
    if (*value != nullptr) {
        ERRLOG_LineErrorNew(3423, SEC_WholeName(port));
        return 0;
    }
    *value = port;
    return 1;
}

static void s_readPorts(ExtReading* reading, const CmnArgs* args)
{
    if (args->nStored < 2) ERRLOG_LineErrorNew(3421, args->argv[0]);
    for (int i = 1; i < args->nStored; ++i) {
        if (std::strlen(args->argv[i]) > SIZE_NAME)
            ERRLOG_LineErrorNew(3424, args->argv[i], SIZE_NAME);
        ExtName* port = s_newName(args->argv[i]);
        if (port == nullptr) return;
        if (s_indexPort(reading->open, port))
            SEC_Append(&reading->open->ports, &reading->portTail, port);
        else
            SEC_FreeNamed(port);
    }
}

// In a model only the reserved digital ports can be converted.
static bool s_isLegalDigital(const ExtReading* reading, const ExtConversion* row)
{
    static const char* const toAnalog[] = {"D_drive", "D_enable", "D_switch"};
    if (reading->model == nullptr) return true;
    if (!row->toAnalog) return std::strcmp(row->digital, "D_receive") == 0;
    for (const char* name : toAnalog)
        if (std::strcmp(row->digital, name) == 0) return true;
    return false;
}

static void s_checkConversion(ExtReading* reading, const ExtConversion* row)
{
    const char* name = EXT_ConversionName(row);
    s_refuseConversion(reading->open, row);
    if (!s_isLegalDigital(reading, row)) ERRLOG_LineErrorNew(3426, name, row->digital);
    if (std::strcmp(row->port1, row->port2) == 0) ERRLOG_LineWarnNew(3435, name, row->port1);
    char key[SIZE_NAME + 16];
    std::snprintf(key, sizeof key, "%s %s %d", name, row->digital, row->corner);
    if (!SEC_SetAdd(&reading->conversions, key))
        ERRLOG_LineErrorNew(3431, name, row->digital, CORNER_ShortTitle(row->corner));
}

// Reads items from `from` on as numbers; 1 when all could be read.
static int s_readNumbers(const CmnArgs* args, int from, const char* const* names, int count,
                         double* const* values)
{
    int done = 1;
    for (int i = 0; i < count; ++i) {
        RngSingle cell = {0.0, CELL_ABSENT};
        done = KRNG_ReadCell(args->argv[from + i], names[i], 0, &cell) && done;
        *values[i] = cell.value;
    }
    return done;
}

static void s_readConversion(ExtReading* reading, const CmnArgs* args, int toAnalog)
{
    static const char* const names[] = {"vlow", "vhigh", "trise", "tfall"};
    ExtConversion* row =
        static_cast<ExtConversion*>(SEC_NewPart(1908, s_Module, __LINE__, sizeof(ExtConversion)));
    if (row == nullptr) return;
    row->toAnalog = toAnalog;
    row->line = PARSE_GetLineNum();
    SEC_CopyName(row->digital, args->argv[1], SIZE_NAME);
    SEC_CopyName(row->port1, args->argv[2], SIZE_NAME);
    SEC_CopyName(row->port2, args->argv[3], SIZE_NAME);
    double* const values[] = {&row->vlow, &row->vhigh, &row->trise, &row->tfall};
    if (s_readNumbers(args, 4, names, toAnalog ? 4 : 2, values)) {
        if (!toAnalog && row->vlow >= row->vhigh)
            ERRLOG_LineErrorNew(3428, "A_to_D", row->vlow, row->vhigh);
        if (toAnalog && row->vlow == row->vhigh) ERRLOG_LineErrorNew(3429, row->vlow);
        for (int i = 2; toAnalog && i < 4; ++i)
            if (*values[i] <= 0.0) ERRLOG_LineErrorNew(3430, names[i]);
    }
    row->corner = s_cornerOf(args->argv[args->nStored - 1]);
    if (row->corner < 0) {
        SEC_FreeRecord(row);
        return;
    }
    s_checkConversion(reading, row);
    SEC_Append(&reading->open->conversions, &reading->conversionTail, row);
}

static void s_readToAnalog(ExtReading* reading, const CmnArgs* args)
{
    s_readConversion(reading, args, 1);
}

static void s_readToDigital(ExtReading* reading, const CmnArgs* args)
{
    s_readConversion(reading, args, 0);
}

static const ExtRow s_rows[] = {
    {"Language", 1, s_readLanguage},      {"Corner", 3, s_readCorner},
    {"Parameters", -1, s_readParameters}, {"Ports", -1, s_readPorts},
    {"D_to_A", 8, s_readToAnalog},        {"A_to_D", 6, s_readToDigital},
};

static int s_dataLine(ExtReading* reading, const char* line)
{
    // Blanks and "=" separate the items, so two characters hold at most one.
    SecArgs args;
    if (!KRNG_Split(line, static_cast<int>(std::strlen(line) / 2) + 1, &args)) return 0;
    const ExtRow* row = args.nStored > 0 ? SEC_FindRow(s_rows, args.argv[0]) : nullptr;
    if (row == nullptr)
        ERRLOG_LineErrorNew(3410, reading->Title(), args.nStored > 0 ? args.argv[0] : line);
    else if (row->items >= 0 && args.nStored - 1 != row->items)
        ERRLOG_LineErrorNew(3414, row->name, args.nStored - 1, row->items);
    else
        row->read(reading, &args);
    return row != nullptr;
}

static bool s_hasCorner(const Ext* item, int corner)
{
    for (const ExtCornerRow* row = item->corners; row != nullptr; row = row->next)
        if (row->corner == corner) return true;
    return false;
}

// What can be judged when all lines are there.
static void s_checkWhole(const ExtReading* reading)
{
    const Ext* item = reading->open;
    if (item->language == LANGUAGE_UNSET && !reading->hasUnknownLanguage)
        ERRLOG_LineErrorNew(3411, reading->Title(), item->name, "Language");
    if (!s_hasCorner(item, CORNER_TYP))
        ERRLOG_LineErrorNew(3411, reading->Title(), item->name, "Corner Typ");
    if (item->ports == nullptr) ERRLOG_LineErrorNew(3411, reading->Title(), item->name, "Ports");
    for (const ExtConversion* row = item->conversions; row != nullptr; row = row->next) {
        const PlaceScope at(row);
        const char* name = EXT_ConversionName(row);
        for (const char* port : {row->port1, row->port2})
            if (item->ports != nullptr && !EXT_HasPort(item, port))
                ERRLOG_LineErrorNew(3427, name, port);
        if (!s_hasCorner(item, row->corner))
            ERRLOG_LineWarnNew(3432, name, CORNER_ShortTitle(row->corner),
                               CORNER_ShortTitle(row->corner));
    }
}

bool EXT_HasConversion(const Ext* item, const char* digital)
{
    for (const ExtConversion* row = item->conversions; row != nullptr; row = row->next)
        if (std::strcmp(row->digital, digital) == 0) return true;
    return false;
}

static void s_checkCircuit(const Ext* item)
{
    if (!EXT_IsAnalog(item)) return;
    SecSet converted = {};
    for (const ExtConversion* row = item->conversions; row != nullptr; row = row->next)
        SEC_SetAdd(&converted, row->digital);
    for (const ExtName* port = item->ports; port != nullptr; port = port->next) {
        const PlaceScope at(port);
        if (std::strncmp(port->name, "D_", 2) == 0 && !SEC_SetHas(&converted, port->name))
            ERRLOG_LineErrorNew(3448, item->name, port->name);
    }
}

static void s_endModel()
{
    if (s_model.open != nullptr) {
        const PlaceScope at(s_model.open);
        s_checkWhole(&s_model);
        EXT_CheckModel(s_model.model, s_model.open);
    }
    s_model = {};
}

static void s_endCircuit(Ext* item)
{
    s_checkWhole(&s_circuit);
    s_checkCircuit(item);
}

static int s_circuitName(Ext* circuit, const char* text)
{
    SecArgs args;
    if (!CMN_ArgParse(text, 2, &args)) return 0;
    const char* name = args.nStored > 0 ? args.argv[0] : "";
    if (*name == '\0') ERRLOG_LineErrorNew(1913, s_circuit.Title());
    if (!SEC_CopyName(circuit->name, name, SIZE_NAME)) ERRLOG_LineErrorNew(3406, name, SIZE_NAME);
    CMN_ReservedWordErr(name);
    if (args.nStored > 1) SEC_IgnoreText(3434, args.argv[1], s_circuit.Title());
    return 1;
}

static int s_circuitLine(Ext*, const char* line)
{
    return s_dataLine(&s_circuit, line);
}

static void s_release(Ext* item)
{
    SEC_FreeList(item->corners, [](ExtCornerRow* row) {
        SEC_FreeText(&row->file);
        SEC_FreeText(&row->circuit);
        SEC_FreeRecord(row);
    });
    SEC_FreeList(item->parameters, SEC_FreeNamed<ExtName>);
    SEC_FreeList(item->ports, SEC_FreeNamed<ExtName>);
    SEC_FreeList(item->conversions, SEC_FreeRecord<ExtConversion>);
    if (item->portIndex != nullptr) {
        IDX_Clear(item->portIndex);
        SEC_FreeRecord(item->portIndex);
    }
    SEC_FreeRecord(item);
}

static const SecKeyword<Ext> s_keywords[] = {
    {KEY_EXTERNAL_CIRCUIT, SEC_TEXT, s_circuitName, s_circuitLine},
};

static const SecLife<ExtReading> s_life = {
    .reading = &s_circuit,
    .frame = s_frame,
    .opener = KEY_EXTERNAL_CIRCUIT,
    .subject = SUBJECT_CIRCUIT,
    .rows = s_keywords,
    .add = IBIS_AddExt,
    .release = s_release,
    .end = s_endCircuit,
};

int EXT_CIR_Init()
{
    if (s_circuit.open != nullptr) {
        const PlaceScope at(SUBJECT_CIRCUIT, s_circuit.open);
        ERRLOG_LineErrorNew(3407, s_circuit.open->name);
    }
    return s_life.Init();
}

// A circuit ends with its end keyword and not with the keyword that comes next.
static int s_endLine(int kind, const char* line)
{
    if (kind == LINE_DATA) {
        ERRLOG_LineErrorNew(3433);
        return 0;
    }
    SEC_IgnoreText(3434, line, "End External Circuit");
    if (s_circuit.open == nullptr) {
        ERRLOG_LineErrorNew(3409);
        return 0;
    }
    s_circuit.open->ended = 1;
    s_life.Close();
    return 1;
}

int EXT_ReceiveLine(int kind, int code, char* line)
{
    CMN_ASSERT(line != nullptr);
    const int isLine = kind == LINE_KEYWORD || kind == LINE_DATA;
    if (isLine && code == KEY_END_EXTERNAL_CIRCUIT)
        return s_endLine(kind, kind == LINE_KEYWORD ? SEC_Argument(line) : line);
    return s_life.ReceiveLine(kind, code, line);
}

void EXT_Free(Ext* item)
{
    if (item == nullptr) return;
    if (s_model.open == item) s_model = {};
    s_release(item);
}

void EXT_FreeList(Ext* head)
{
    s_life.FreeList(head);
}

int EXT_AddLink(Ext** head, Ext* item)
{
    CMN_ASSERT(head != nullptr && item != nullptr);
    return SEC_AddLink(head, item);
}

Ext* EXT_FindByName(Ext* head, const char* name)
{
    CMN_ASSERT(name != nullptr);
    return SEC_FindByName(head, name);
}

int EXT_HasPort(const Ext* item, const char* port)
{
    CMN_ASSERT(item != nullptr && port != nullptr);
    return item->portIndex != nullptr && IDX_FindName(item->portIndex, port) != nullptr;
}

int EXT_MdlNew(Mdl* model, const char* line)
{
    CMN_ASSERT(model != nullptr && line != nullptr);
    SEC_IgnoreText(3434, line, "External Model");
    s_model = {};
    s_model.model = model;
    if (model->external != nullptr) {
        ERRLOG_LineErrorNew(3442, model->name);
        return 0;
    }
    Ext* item = static_cast<Ext*>(SEC_NewRecord(&s_frame, sizeof(Ext)));
    if (item == nullptr) return 0;
    item->line = PARSE_GetLineNum();
    CMN_strncpy(item->name, model->name, SIZE_NAME);
    s_model.open = item;
    model->external = item;
    return 1;
}

int EXT_MdlReceiveLine(Mdl* model, const char* line)
{
    CMN_ASSERT(model != nullptr && line != nullptr);
    // The lines of a second block are passed over.
    return s_model.model == model && s_model.open != nullptr && s_dataLine(&s_model, line);
}

int EXT_MdlEnd(Mdl* model, const char* line)
{
    CMN_ASSERT(model != nullptr && line != nullptr);
    SEC_IgnoreText(3434, line, "End External Model");
    if (s_model.model != model) {
        ERRLOG_LineErrorNew(3441);
        return 0;
    }
    if (s_model.open != nullptr) s_model.open->ended = 1;
    s_endModel();
    return 1;
}

int EXT_MdlFini(Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    if (s_model.model != model) return 1;
    ERRLOG_LineErrorNew(3440, model->name);
    s_endModel();
    return 0;
}

void EXT_CloseCircuit()
{
    if (s_circuit.open == nullptr) return;
    const PlaceScope at(SUBJECT_CIRCUIT, s_circuit.open);
    ERRLOG_ErrorNew(3408, s_circuit.open->name);
    s_life.Close();
}
