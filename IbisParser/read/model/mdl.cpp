// mdl: life cycle of [Model] and the dispatch of its keywords and lines.
#include "IbisParser/mdl.h"

#include <initializer_list>

#include "IbisParser/algmod.h"
#include "IbisParser/base/keyword.h"
#include "IbisParser/errlog.h"
#include "IbisParser/ext.h"
#include "IbisParser/isso.h"
#include "IbisParser/parse.h"
#include "IbisParser/read/model/mdl.h"
#include "IbisParser/vitbl.h"
#include "IbisParser/wvfrm.h"

static const char s_Module[] = "IbisParser/mdl";

namespace {

const SecFrame frame = {s_Module, 100, 101, 102, 103, 104, 105};

// The model that is being read.
struct Reading {
    Mdl* open;        // null: none
    int code;         // keyword whose data is being read, 0 before it and after its end
    int skip;         // its data lines are dropped
    int algModOpen;   // [End Algorithmic Model] has not come
    Wvfrm* waveform;  // the last one
    Wvfrm* followed;  // the same while only [Composite Current] keywords follow it, else null
};
Reading reading = {};

// What becomes of a keyword that the model has already.
enum Repeat {
    REPEAT_DROPPED,  // reported, its data dropped
    REPEAT_BEGINS,   // the same, but it begins all the same
    REPEAT_FREE      // legal, or judged where it begins
};

// What a keyword does with its line and its data. Null: nothing of the kind is allowed.
struct Part {
    int (*begin)(Mdl* model, int code, char* line);
    int (*receive)(Mdl* model, int code, char* line);
    int (*fini)(Mdl* model, int code);
    bool takesText;  // begin judges the text after the keyword
    Repeat repeat;
    int names;  // items of a data line before the first value; -1: no values
};

template <int (*fn)(Mdl*)>
int whole(Mdl* model, int, char*)
{
    return fn(model);
}

template <int (*fn)(Mdl*, const char*)>
int giveLine(Mdl* model, int, char* line)
{
    return fn(model, line);
}

template <int (*fn)(Mdl*, const char*)>
int giveText(Mdl* model, int, char* line)
{
    return fn(model, SEC_Argument(line));
}

template <int (*fn)(Mdl*)>
int endPart(Mdl* model, int)
{
    return fn(model);
}

// [Model] itself.

int modelLine(Mdl* model, int code, char* line)
{
    return MDL_NameLine(model->name, SEC_Argument(line), code, LIMIT_SIGNAL, 115, 117);
}

// Ranges on the keyword line.

int rangeLine(Mdl* model, int code, char* line)
{
    const char* text = SEC_Argument(line);
    MDL_CheckScale(text, 0);
    return MDL_RangeLine(model, code, text);
}

// V-I tables.

const struct {
    int code;
    Vitbl* Mdl::*slot;
} tableRows[] = {
    {KEY_PULLDOWN, &Mdl::pulldown},  {KEY_PULLUP, &Mdl::pullup},
    {KEY_GND_CLAMP, &Mdl::gndClamp}, {KEY_POWER_CLAMP, &Mdl::powerClamp},
    {KEY_ISSO_PD, &Mdl::issoPD},     {KEY_ISSO_PU, &Mdl::issoPU},
};

Vitbl** tableSlot(Mdl* model, int code)
{
    for (const auto& row : tableRows)
        if (row.code == code) return &(model->*(row.slot));
    CMN_AssertFailed(s_Module, __LINE__);
}

int tableBegin(Mdl* model, int code, char*)
{
    return VITBL_New(tableSlot(model, code), SEC_KeywordName(code), model->name);
}

int tableReceive(Mdl* model, int code, char* line)
{
    return VITBL_ReceiveLine(*tableSlot(model, code), line);
}

int tableFini(Mdl* model, int code)
{
    return VITBL_Fini(*tableSlot(model, code));
}

// Waveforms and what follows them.

int waveBegin(Mdl* model, int code, char*)
{
    reading.waveform = nullptr;
    const int done = WVFRM_New(code == KEY_RISING_WAVEFORM ? &model->rising : &model->falling, code,
                               model->name, &reading.waveform);
    reading.followed = reading.waveform;
    return done;
}

int waveReceive(Mdl*, int, char* line)
{
    return reading.waveform != nullptr && WVFRM_ReceiveLine(reading.waveform, line);
}

int waveFini(Mdl*, int)
{
    return reading.waveform != nullptr && WVFRM_Fini(reading.waveform);
}

int compositeBegin(Mdl* model, int, char* line)
{
    if (model->rising == nullptr && model->falling == nullptr) {
        ERRLOG_LineErrorNew(153);
        reading.skip = 1;
        return 0;
    }
    return ISSO_KeywordLine(model, reading.followed, SEC_Argument(line));
}

int compositeReceive(Mdl* model, int, char* line)
{
    return ISSO_ReceiveLine(model, reading.followed, line);
}

int compositeFini(Mdl* model, int)
{
    return reading.skip ? 0 : ISSO_Fini(model, reading.followed);
}

// [Ramp].

int rampBegin(Mdl* model, int, char*)
{
    return RAMP_KeywordLine(&model->ramp);
}

int rampReceive(Mdl* model, int, char* line)
{
    return model->ramp != nullptr && RAMP_ReceiveLine(model->ramp, line);
}

// Series elements.

int seriesBegin(Mdl* model, int code, char* line)
{
    const char* text = SEC_Argument(line);
    MDL_CheckScale(text, 0);
    return SEREL_KeywordLine(model, code, text);
}

// [Algorithmic Model].

int algModBegin(Mdl* model, int, char* line)
{
    reading.algModOpen = 1;
    return ALGMOD_New(line, &model->algMod);
}

int algModReceive(Mdl* model, int, char* line)
{
    return model->algMod != nullptr && ALGMOD_ReceiveLine(line, &model->algMod->execs);
}

int algModEnd(Mdl* model, int, char*)
{
    if (!reading.algModOpen) {
        ERRLOG_LineErrorNew(152);
        return 0;
    }
    reading.algModOpen = 0;
    return model->algMod != nullptr && ALGMOD_Fini(model->algMod->execs);
}

// clang-format off
//                           begin                           receive                       fini                  text   repeat          names
const Part modelPart         = { modelLine,                  giveLine<MDL_SubParameter>,     nullptr,              true,  REPEAT_DROPPED,  0 };
const Part rangePart         = { rangeLine,                  nullptr,                      nullptr,              true,  REPEAT_DROPPED, -1 };
const Part table         = { tableBegin,                 tableReceive,               tableFini,          false, REPEAT_DROPPED,  0 };
const Part wave          = { waveBegin,                  waveReceive,                waveFini,           false, REPEAT_FREE,     0 };
const Part composite     = { compositeBegin,             compositeReceive,           compositeFini,      false, REPEAT_FREE,     0 };
const Part ramp          = { rampBegin,                  rampReceive,                nullptr,              false, REPEAT_DROPPED,  0 };
const Part spec          = { whole<MDLSPEC_KeywordLine>, giveLine<MDLSPEC_ReceiveLine>,  endPart<MDLSPEC_Fini>,  false, REPEAT_DROPPED,  0 };
const Part thresholds    = { whole<RCVTH_KeywordLine>,   giveLine<RCVTH_ReceiveLine>,    endPart<RCVTH_Fini>,    false, REPEAT_DROPPED,  0 };
const Part schedule      = { whole<DRVSH_KeywordLine>,   giveLine<DRVSH_ReceiveLine>,    endPart<DRVSH_Fini>,    false, REPEAT_DROPPED,  1 };
const Part addSub        = { whole<ADDSUB_KeywordLine>,  giveLine<ADDSUB_ReceiveLine>,   endPart<ADDSUB_Fini>,   false, REPEAT_DROPPED, -1 };
const Part state         = { seriesBegin,                nullptr,                      nullptr,              false, REPEAT_BEGINS,  -1 };
const Part element       = { seriesBegin,                nullptr,                      nullptr,              true,  REPEAT_FREE,    -1 };
const Part seriesTable   = { seriesBegin,                giveLine<SEREL_ReceiveLine>,    endPart<SEREL_Fini>,    false, REPEAT_FREE,     0 };
const Part external      = { giveText<EXT_MdlNew>,           giveLine<EXT_MdlReceiveLine>,   nullptr,              true,  REPEAT_FREE,    -1 };
const Part externalEnd   = { giveText<EXT_MdlEnd>,           nullptr,                      nullptr,              true,  REPEAT_FREE,    -1 };
const Part algMod        = { algModBegin,                algModReceive,              nullptr,              true,  REPEAT_FREE,    -1 };
const Part algModEndPart = { algModEnd,                  nullptr,                      nullptr,              false, REPEAT_FREE,    -1 };
const Part emi           = { whole<MDLEMI_Begin>,        giveLine<MDLEMI_ReceiveLine>,   nullptr,              false, REPEAT_BEGINS,  -1 };
const Part emiEnd        = { whole<MDLEMI_End>,          nullptr,                      nullptr,              false, REPEAT_FREE,    -1 };

// Whether the type groups allow a keyword, in the order of MdlGroup; "by type": the type's row says.
enum Allowed { NO, YES, BY_PULLUP, BY_PULLDOWN, BY_RAMP };

const struct Keyword {
    int code;
    Allowed allowed[MDL_GROUP_COUNT];
    const Part* part;
} modelKeywords[] = {
    //                               RX           TX           IO           Term  Ser  Switch
    { KEY_EXTERNAL_MODEL,          { YES,         YES,         YES,         YES,  YES, YES }, &external      },
    { KEY_END_EXTERNAL_MODEL,      { YES,         YES,         YES,         YES,  YES, YES }, &externalEnd   },
    { KEY_MODEL,                   { YES,         YES,         YES,         YES,  YES, YES }, &modelPart         },
    { KEY_TEMPERATURE_RANGE,       { YES,         YES,         YES,         YES,  YES, YES }, &rangePart         },
    { KEY_VOLTAGE_RANGE,           { YES,         YES,         YES,         YES,  YES, YES }, &rangePart         },
    { KEY_PULLUP_REFERENCE,        { YES,         YES,         YES,         YES,  YES, YES }, &rangePart         },
    { KEY_PULLDOWN_REFERENCE,      { YES,         YES,         YES,         YES,  YES, YES }, &rangePart         },
    { KEY_POWER_CLAMP_REFERENCE,   { YES,         YES,         YES,         YES,  YES, YES }, &rangePart         },
    { KEY_GND_CLAMP_REFERENCE,     { YES,         YES,         YES,         YES,  YES, YES }, &rangePart         },
    { KEY_EXTERNAL_REFERENCE,      { YES,         YES,         YES,         YES,  YES, YES }, &rangePart         },
    { KEY_PULLDOWN,                { BY_PULLDOWN, BY_PULLDOWN, BY_PULLDOWN, NO,   NO,  NO  }, &table         },
    { KEY_PULLUP,                  { BY_PULLUP,   BY_PULLUP,   BY_PULLUP,   NO,   NO,  NO  }, &table         },
    { KEY_GND_CLAMP,               { YES,         YES,         YES,         YES,  NO,  NO  }, &table         },
    { KEY_POWER_CLAMP,             { YES,         YES,         YES,         YES,  NO,  NO  }, &table         },
    { KEY_RGND,                    { NO,          NO,          NO,          YES,  NO,  NO  }, &rangePart         },
    { KEY_RPOWER,                  { NO,          NO,          NO,          YES,  NO,  NO  }, &rangePart         },
    { KEY_RAC,                     { NO,          NO,          NO,          YES,  NO,  NO  }, &rangePart         },
    { KEY_CAC,                     { NO,          NO,          NO,          YES,  NO,  NO  }, &rangePart         },
    { KEY_RAMP,                    { BY_RAMP,     BY_RAMP,     BY_RAMP,     NO,   NO,  NO  }, &ramp          },
    { KEY_RISING_WAVEFORM,         { NO,          YES,         YES,         NO,   NO,  NO  }, &wave          },
    { KEY_FALLING_WAVEFORM,        { NO,          YES,         YES,         NO,   NO,  NO  }, &wave          },
    { KEY_TTGND,                   { YES,         YES,         YES,         YES,  NO,  NO  }, &rangePart         },
    { KEY_TTPOWER,                 { YES,         YES,         YES,         YES,  NO,  NO  }, &rangePart         },
    { KEY_MODEL_SPEC,              { YES,         YES,         YES,         YES,  NO,  NO  }, &spec          },
    { KEY_RECEIVER_THRESHOLDS,     { YES,         NO,          YES,         NO,   NO,  NO  }, &thresholds    },
    { KEY_DRIVER_SCHEDULE,         { NO,          YES,         YES,         NO,   NO,  NO  }, &schedule      },
    // The series elements judge the type themselves.
    { KEY_ON,                      { YES,         YES,         YES,         YES,  YES, YES }, &state         },
    { KEY_OFF,                     { YES,         YES,         YES,         YES,  YES, YES }, &state         },
    { KEY_R_SERIES,                { YES,         YES,         YES,         YES,  YES, YES }, &element       },
    { KEY_L_SERIES,                { YES,         YES,         YES,         YES,  YES, YES }, &element       },
    { KEY_RL_SERIES,               { YES,         YES,         YES,         YES,  YES, YES }, &element       },
    { KEY_C_SERIES,                { YES,         YES,         YES,         YES,  YES, YES }, &element       },
    { KEY_LC_SERIES,               { YES,         YES,         YES,         YES,  YES, YES }, &element       },
    { KEY_RC_SERIES,               { YES,         YES,         YES,         YES,  YES, YES }, &element       },
    { KEY_SERIES_CURRENT,          { YES,         YES,         YES,         YES,  YES, YES }, &seriesTable   },
    { KEY_SERIES_MOSFET,           { YES,         YES,         YES,         YES,  YES, YES }, &seriesTable   },
    // Series kinds are reported when the submodels are known.
    { KEY_ADD_SUBMODEL,            { YES,         YES,         YES,         YES,  YES, YES }, &addSub        },
    { KEY_ALGORITHMIC_MODEL,       { YES,         YES,         YES,         YES,  YES, YES }, &algMod        },
    { KEY_END_ALGORITHMIC_MODEL,   { YES,         YES,         YES,         YES,  YES, YES }, &algModEndPart },
    { KEY_ISSO_PD,                 { NO,          YES,         YES,         NO,   NO,  NO  }, &table         },
    { KEY_ISSO_PU,                 { NO,          YES,         YES,         NO,   NO,  NO  }, &table         },
    { KEY_COMPOSITE_CURRENT,       { NO,          YES,         YES,         NO,   NO,  NO  }, &composite     },
    { KEY_BEGIN_EMI_MODEL,         { YES,         YES,         YES,         YES,  YES, YES }, &emi           },
    { KEY_END_EMI_MODEL,           { YES,         YES,         YES,         YES,  YES, YES }, &emiEnd        },
};
// clang-format on

enum { FIRST_CODE = KEY_EXTERNAL_MODEL, LAST_CODE = KEY_END_EMI_MODEL };
static_assert(sizeof modelKeywords / sizeof modelKeywords[0] == LAST_CODE - FIRST_CODE + 1,
              "one row for each code, in order");

const Part* findPart(int code)
{
    return modelKeywords[code - FIRST_CODE].part;
}

bool isAllowed(const MdlTypeInfo* info, int code)
{
    switch (modelKeywords[code - FIRST_CODE].allowed[info->group]) {
        case NO:
            return false;
        case BY_PULLUP:
            return info->pullup != MDL_FORBIDDEN;
        case BY_PULLDOWN:
            return info->pulldown != MDL_FORBIDDEN;
        case BY_RAMP:
            return info->ramp != MDL_FORBIDDEN;
        default:
            return true;
    }
}

// What only a driver has is no more than useless in a pure receiver.
bool isDriverData(int code)
{
    return code == KEY_PULLDOWN || code == KEY_PULLUP || code == KEY_RAMP ||
           code == KEY_RISING_WAVEFORM || code == KEY_FALLING_WAVEFORM;
}

void checkAllowed(Mdl* model, int code)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info == nullptr || isAllowed(info, code)) return;
    if (info->group == MDL_GROUP_RX && isDriverData(code)) {
        ERRLOG_LineWarnNew(122, SEC_KeywordName(code), info->name, model->name);
    } else {
        ERRLOG_LineErrorNew(119, SEC_KeywordName(code), info->name, model->name);
        SEC_MarkFound(&model->refused, code - FIRST_CODE);
    }
}

// Blocks with an end keyword of their own that the next keyword finds open.
void closeBlocks(Mdl* model, int nextCode)
{
    if (reading.algModOpen && nextCode != KEY_END_ALGORITHMIC_MODEL) {
        ERRLOG_LineErrorNew(151, model->name);
        reading.algModOpen = 0;
        if (model->algMod != nullptr) ALGMOD_Fini(model->algMod->execs);
    }
    if (nextCode != KEY_END_EXTERNAL_MODEL) EXT_MdlFini(model);
    if (nextCode != KEY_END_EMI_MODEL) MDLEMI_Fini(model);
}

int keywordLine(Mdl* model, int code, char* line)
{
    closeBlocks(model, code);
    reading.code = code;
    reading.skip = 0;
    if (code != KEY_COMPOSITE_CURRENT) reading.followed = nullptr;

    const char* name = SEC_KeywordName(code);
    const Part* part = findPart(code);
    if (KEYWORD_Row(code)->since > SEC_Version())
        ERRLOG_LineErrorNew(121, name, VERSION_Since(KEYWORD_Row(code)->since));
    checkAllowed(model, code);
    if (!part->takesText) SEC_IgnoreText(117, SEC_Argument(line), name);
    const int isFirst = SEC_MarkFound(&model->found, code - FIRST_CODE);
    if (!isFirst && part->repeat != REPEAT_FREE) {
        ERRLOG_LineErrorNew(118, name, model->name);
        reading.skip = 1;
        if (part->repeat == REPEAT_DROPPED) return 0;
    }
    return part->begin(model, code, line);
}

int dataLine(Mdl* model, int code, char* line)
{
    if (code != reading.code) {
        SEC_UnknownKeyword(&frame, __LINE__);
        return 0;
    }
    const Part* part = findPart(code);
    if (part->receive == nullptr) {
        ERRLOG_LineErrorNew(116, SEC_KeywordName(code));
        return 0;
    }
    if (reading.skip) return 0;
    if (part->names >= 0) MDL_CheckScale(line, part->names);
    return part->receive(model, code, line);
}

// Ends the current keyword.
void finishKeyword()
{
    const Part* part = reading.code != 0 ? findPart(reading.code) : nullptr;
    if (part != nullptr && part->fini != nullptr && !reading.skip)
        part->fini(reading.open, reading.code);
    reading.code = 0;
    reading.skip = 0;
}

void free(Mdl* model)
{
    if (model == reading.open) reading = {};
    for (RngRange* range :
         {model->C_comp, model->C_comp_pullup, model->C_comp_pulldown, model->C_comp_power_clamp,
          model->C_comp_gnd_clamp, model->temperature, model->voltageRange, model->pullupRef,
          model->pulldownRef, model->powerClampRef, model->gndClampRef, model->externalRef,
          model->TTgnd, model->TTpower, model->Rgnd, model->Rpower, model->Rac, model->Cac})
        RNG_Free(range);
    for (const auto& row : tableRows)
        VITBL_Free(model->*(row.slot));
    RAMP_Free(model->ramp);
    WVFRM_FreeList(model->rising);
    WVFRM_FreeList(model->falling);
    MDLSPEC_Free(model->spec);
    RCVTH_Free(model->thresholds);
    DRVSH_FreeList(model->schedule);
    ADDSUB_FreeList(model->addSubs);
    for (SerEl* elements : model->series)
        SEREL_Free(elements);
    EXT_Free(model->external);
    ALGMOD_Free(model->algMod);
    MDLEMI_Free(model->emi);
    SEC_FreeRecord(model);
}

}  // namespace

int MDL_Found(const Mdl* model, int code)
{
    CMN_ASSERT(model != nullptr && code >= FIRST_CODE && code <= LAST_CODE);
    return (model->found >> (code - FIRST_CODE) & 1u) != 0;
}

int MDL_Refused(const Mdl* model, int code)
{
    CMN_ASSERT(model != nullptr && code >= FIRST_CODE && code <= LAST_CODE);
    return (model->refused >> (code - FIRST_CODE) & 1u) != 0;
}

int MDL_Init(void)
{
    MDL_Close();
    IbisRoot* root = SEC_Root(&frame, __LINE__);
    if (root == nullptr) return 0;
    auto* model = static_cast<Mdl*>(SEC_NewRecord(&frame, sizeof(Mdl)));
    if (model == nullptr) return 0;
    model->line = PARSE_GetLineNum();
    IBIS_AddMdl(root, model);
    reading = {};
    reading.open = model;
    MDL_SubParametersBegin();
    return 1;
}

int MDL_ReceiveLine(int kind, int code, char* line)
{
    CMN_ASSERT(line != nullptr);
    if (!SEC_Receives(&frame, __LINE__, kind, reading.open)) return 0;
    if (code < FIRST_CODE || code > LAST_CODE) {
        SEC_UnknownKeyword(&frame, __LINE__);
        return 0;
    }
    return kind == LINE_KEYWORD ? keywordLine(reading.open, code, line)
                                : dataLine(reading.open, code, line);
}

int MDL_Fini(int nextCode)
{
    if (reading.open == nullptr) return 0;
    finishKeyword();
    // Files of later versions hold unknown keywords in mid-model: they do not end it.
    const bool staysOpen = nextCode == NOT_KEY || (nextCode >= FIRST_CODE &&
                                                   nextCode <= LAST_CODE && nextCode != KEY_MODEL);
    if (!staysOpen) MDL_Close();
    return 1;
}

void MDL_Close(void)
{
    if (reading.open == nullptr) return;
    finishKeyword();
    closeBlocks(reading.open, NOT_KEY);
    MDL_EndOfRecord(reading.open);
    reading = {};
}

void MDL_FreeList(Mdl* head)
{
    SEC_FreeList(head, free);
}

int MDL_AddLink(Mdl** head, Mdl* item)
{
    CMN_ASSERT(head != nullptr && item != nullptr);
    return SEC_AddLink(head, item);
}

Mdl* MDL_FindByName(const Mdl* head, const char* name)
{
    CMN_ASSERT(name != nullptr);
    return const_cast<Mdl*>(SEC_FindByName(head, name));
}
