// mdl: life cycle of [Model] and the dispatch of its keywords and lines.
#include "IbisParser/mdl.h"

#include <initializer_list>

#include "IbisParser/algmod.h"
#include "IbisParser/errlog.h"
#include "IbisParser/ext.h"
#include "IbisParser/isso.h"
#include "IbisParser/parse.h"
#include "IbisParser/read/model/mdl.h"
#include "IbisParser/vitbl.h"
#include "IbisParser/wvfrm.h"

static const char s_Module[] = "IbisParser/mdl";

namespace {

const SecFrame s_frame = {s_Module, 100, 101, 102, 103, 104, 105};

// The model that is being read.
struct Reading {
    Mdl* open;        // null: none
    int code;         // keyword whose data is being read, 0 before it and after its end
    int skip;         // its data lines are dropped
    int algModOpen;   // [End Algorithmic Model] has not come
    Wvfrm* waveform;  // the last one
    Wvfrm* followed;  // the same while only [Composite Current] keywords follow it, else null
};
Reading s_reading = {};

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
int s_whole(Mdl* model, int, char*)
{
    return fn(model);
}

template <int (*fn)(Mdl*, const char*)>
int s_line(Mdl* model, int, char* line)
{
    return fn(model, line);
}

template <int (*fn)(Mdl*, const char*)>
int s_text(Mdl* model, int, char* line)
{
    return fn(model, SEC_Argument(line));
}

template <int (*fn)(Mdl*)>
int s_end(Mdl* model, int)
{
    return fn(model);
}

// [Model] itself.

int s_modelLine(Mdl* model, int code, char* line)
{
    return MDL_NameLine(model->name, SEC_Argument(line), code, LIMIT_SIGNAL, 115, 117);
}

// Ranges on the keyword line.

int s_rangeLine(Mdl* model, int code, char* line)
{
    const char* text = SEC_Argument(line);
    MDL_CheckScale(text, 0);
    return MDL_RangeLine(model, code, text);
}

// V-I tables.

const struct {
    int code;
    Vitbl* Mdl::*slot;
} s_tables[] = {
    {KEY_PULLDOWN, &Mdl::pulldown},  {KEY_PULLUP, &Mdl::pullup},
    {KEY_GND_CLAMP, &Mdl::gndClamp}, {KEY_POWER_CLAMP, &Mdl::powerClamp},
    {KEY_ISSO_PD, &Mdl::issoPD},     {KEY_ISSO_PU, &Mdl::issoPU},
};

Vitbl** s_tableSlot(Mdl* model, int code)
{
    for (const auto& row : s_tables)
        if (row.code == code) return &(model->*(row.slot));
    CMN_AssertFailed(s_Module, __LINE__);
}

int s_tableBegin(Mdl* model, int code, char*)
{
    return VITBL_New(s_tableSlot(model, code), SEC_KeywordName(code), model->name);
}

int s_tableReceive(Mdl* model, int code, char* line)
{
    return VITBL_ReceiveLine(*s_tableSlot(model, code), line);
}

int s_tableFini(Mdl* model, int code)
{
    return VITBL_Fini(*s_tableSlot(model, code));
}

// Waveforms and what follows them.

int s_waveBegin(Mdl* model, int code, char*)
{
    s_reading.waveform = nullptr;
    const int done = WVFRM_New(code == KEY_RISING_WAVEFORM ? &model->rising : &model->falling, code,
                               model->name, &s_reading.waveform);
    s_reading.followed = s_reading.waveform;
    return done;
}

int s_waveReceive(Mdl*, int, char* line)
{
    return s_reading.waveform != nullptr && WVFRM_ReceiveLine(s_reading.waveform, line);
}

int s_waveFini(Mdl*, int)
{
    return s_reading.waveform != nullptr && WVFRM_Fini(s_reading.waveform);
}

int s_compositeBegin(Mdl* model, int, char* line)
{
    if (model->rising == nullptr && model->falling == nullptr) {
        ERRLOG_LineErrorNew(153);
        s_reading.skip = 1;
        return 0;
    }
    return ISSO_KeywordLine(model, s_reading.followed, SEC_Argument(line));
}

int s_compositeReceive(Mdl* model, int, char* line)
{
    return ISSO_ReceiveLine(model, s_reading.followed, line);
}

int s_compositeFini(Mdl* model, int)
{
    return s_reading.skip ? 0 : ISSO_Fini(model, s_reading.followed);
}

// [Ramp].

int s_rampBegin(Mdl* model, int, char*)
{
    return RAMP_KeywordLine(&model->ramp);
}

int s_rampReceive(Mdl* model, int, char* line)
{
    return model->ramp != nullptr && RAMP_ReceiveLine(model->ramp, line);
}

// Series elements.

int s_seriesBegin(Mdl* model, int code, char* line)
{
    const char* text = SEC_Argument(line);
    MDL_CheckScale(text, 0);
    return SEREL_KeywordLine(model, code, text);
}

// [Algorithmic Model].

int s_algModBegin(Mdl* model, int, char* line)
{
    s_reading.algModOpen = 1;
    return ALGMOD_New(line, &model->algMod);
}

int s_algModReceive(Mdl* model, int, char* line)
{
    return model->algMod != nullptr && ALGMOD_ReceiveLine(line, &model->algMod->execs);
}

int s_algModEnd(Mdl* model, int, char*)
{
    if (!s_reading.algModOpen) {
        ERRLOG_LineErrorNew(152);
        return 0;
    }
    s_reading.algModOpen = 0;
    return model->algMod != nullptr && ALGMOD_Fini(model->algMod->execs);
}

// clang-format off
//                           begin                           receive                       fini                  text   repeat          names
const Part s_model         = { s_modelLine,                  s_line<MDL_SubParameter>,     nullptr,              true,  REPEAT_DROPPED,  0 };
const Part s_range         = { s_rangeLine,                  nullptr,                      nullptr,              true,  REPEAT_DROPPED, -1 };
const Part s_table         = { s_tableBegin,                 s_tableReceive,               s_tableFini,          false, REPEAT_DROPPED,  0 };
const Part s_wave          = { s_waveBegin,                  s_waveReceive,                s_waveFini,           false, REPEAT_FREE,     0 };
const Part s_composite     = { s_compositeBegin,             s_compositeReceive,           s_compositeFini,      false, REPEAT_FREE,     0 };
const Part s_ramp          = { s_rampBegin,                  s_rampReceive,                nullptr,              false, REPEAT_DROPPED,  0 };
const Part s_spec          = { s_whole<MDLSPEC_KeywordLine>, s_line<MDLSPEC_ReceiveLine>,  s_end<MDLSPEC_Fini>,  false, REPEAT_DROPPED,  0 };
const Part s_thresholds    = { s_whole<RCVTH_KeywordLine>,   s_line<RCVTH_ReceiveLine>,    s_end<RCVTH_Fini>,    false, REPEAT_DROPPED,  0 };
const Part s_schedule      = { s_whole<DRVSH_KeywordLine>,   s_line<DRVSH_ReceiveLine>,    s_end<DRVSH_Fini>,    false, REPEAT_DROPPED,  1 };
const Part s_addSub        = { s_whole<ADDSUB_KeywordLine>,  s_line<ADDSUB_ReceiveLine>,   s_end<ADDSUB_Fini>,   false, REPEAT_DROPPED, -1 };
const Part s_state         = { s_seriesBegin,                nullptr,                      nullptr,              false, REPEAT_BEGINS,  -1 };
const Part s_element       = { s_seriesBegin,                nullptr,                      nullptr,              true,  REPEAT_FREE,    -1 };
const Part s_seriesTable   = { s_seriesBegin,                s_line<SEREL_ReceiveLine>,    s_end<SEREL_Fini>,    false, REPEAT_FREE,     0 };
const Part s_external      = { s_text<EXT_MdlNew>,           s_line<EXT_MdlReceiveLine>,   nullptr,              true,  REPEAT_FREE,    -1 };
const Part s_externalEnd   = { s_text<EXT_MdlEnd>,           nullptr,                      nullptr,              true,  REPEAT_FREE,    -1 };
const Part s_algMod        = { s_algModBegin,                s_algModReceive,              nullptr,              true,  REPEAT_FREE,    -1 };
const Part s_algModEndPart = { s_algModEnd,                  nullptr,                      nullptr,              false, REPEAT_FREE,    -1 };
const Part s_emi           = { s_whole<MDLEMI_Begin>,        s_line<MDLEMI_ReceiveLine>,   nullptr,              false, REPEAT_BEGINS,  -1 };
const Part s_emiEnd        = { s_whole<MDLEMI_End>,          nullptr,                      nullptr,              false, REPEAT_FREE,    -1 };

// Whether the type groups allow a keyword, in the order of MdlGroup; "by type": the type's row says.
enum Allowed { NO, YES, BY_PULLUP, BY_PULLDOWN, BY_RAMP };

const struct Keyword {
    int code;
    Allowed allowed[MDL_GROUP_COUNT];
    const Part* part;
} s_keywords[] = {
    //                               RX           TX           IO           Term  Ser  Switch
    { KEY_EXTERNAL_MODEL,          { YES,         YES,         YES,         YES,  YES, YES }, &s_external      },
    { KEY_END_EXTERNAL_MODEL,      { YES,         YES,         YES,         YES,  YES, YES }, &s_externalEnd   },
    { KEY_MODEL,                   { YES,         YES,         YES,         YES,  YES, YES }, &s_model         },
    { KEY_TEMPERATURE_RANGE,       { YES,         YES,         YES,         YES,  YES, YES }, &s_range         },
    { KEY_VOLTAGE_RANGE,           { YES,         YES,         YES,         YES,  YES, YES }, &s_range         },
    { KEY_PULLUP_REFERENCE,        { YES,         YES,         YES,         YES,  YES, YES }, &s_range         },
    { KEY_PULLDOWN_REFERENCE,      { YES,         YES,         YES,         YES,  YES, YES }, &s_range         },
    { KEY_POWER_CLAMP_REFERENCE,   { YES,         YES,         YES,         YES,  YES, YES }, &s_range         },
    { KEY_GND_CLAMP_REFERENCE,     { YES,         YES,         YES,         YES,  YES, YES }, &s_range         },
    { KEY_EXTERNAL_REFERENCE,      { YES,         YES,         YES,         YES,  YES, YES }, &s_range         },
    { KEY_PULLDOWN,                { BY_PULLDOWN, BY_PULLDOWN, BY_PULLDOWN, NO,   NO,  NO  }, &s_table         },
    { KEY_PULLUP,                  { BY_PULLUP,   BY_PULLUP,   BY_PULLUP,   NO,   NO,  NO  }, &s_table         },
    { KEY_GND_CLAMP,               { YES,         YES,         YES,         YES,  NO,  NO  }, &s_table         },
    { KEY_POWER_CLAMP,             { YES,         YES,         YES,         YES,  NO,  NO  }, &s_table         },
    { KEY_RGND,                    { NO,          NO,          NO,          YES,  NO,  NO  }, &s_range         },
    { KEY_RPOWER,                  { NO,          NO,          NO,          YES,  NO,  NO  }, &s_range         },
    { KEY_RAC,                     { NO,          NO,          NO,          YES,  NO,  NO  }, &s_range         },
    { KEY_CAC,                     { NO,          NO,          NO,          YES,  NO,  NO  }, &s_range         },
    { KEY_RAMP,                    { BY_RAMP,     BY_RAMP,     BY_RAMP,     NO,   NO,  NO  }, &s_ramp          },
    { KEY_RISING_WAVEFORM,         { NO,          YES,         YES,         NO,   NO,  NO  }, &s_wave          },
    { KEY_FALLING_WAVEFORM,        { NO,          YES,         YES,         NO,   NO,  NO  }, &s_wave          },
    { KEY_TTGND,                   { YES,         YES,         YES,         YES,  NO,  NO  }, &s_range         },
    { KEY_TTPOWER,                 { YES,         YES,         YES,         YES,  NO,  NO  }, &s_range         },
    { KEY_MODEL_SPEC,              { YES,         YES,         YES,         YES,  NO,  NO  }, &s_spec          },
    { KEY_RECEIVER_THRESHOLDS,     { YES,         NO,          YES,         NO,   NO,  NO  }, &s_thresholds    },
    { KEY_DRIVER_SCHEDULE,         { NO,          YES,         YES,         NO,   NO,  NO  }, &s_schedule      },
    // The series elements judge the type themselves.
    { KEY_ON,                      { YES,         YES,         YES,         YES,  YES, YES }, &s_state         },
    { KEY_OFF,                     { YES,         YES,         YES,         YES,  YES, YES }, &s_state         },
    { KEY_R_SERIES,                { YES,         YES,         YES,         YES,  YES, YES }, &s_element       },
    { KEY_L_SERIES,                { YES,         YES,         YES,         YES,  YES, YES }, &s_element       },
    { KEY_RL_SERIES,               { YES,         YES,         YES,         YES,  YES, YES }, &s_element       },
    { KEY_C_SERIES,                { YES,         YES,         YES,         YES,  YES, YES }, &s_element       },
    { KEY_LC_SERIES,               { YES,         YES,         YES,         YES,  YES, YES }, &s_element       },
    { KEY_RC_SERIES,               { YES,         YES,         YES,         YES,  YES, YES }, &s_element       },
    { KEY_SERIES_CURRENT,          { YES,         YES,         YES,         YES,  YES, YES }, &s_seriesTable   },
    { KEY_SERIES_MOSFET,           { YES,         YES,         YES,         YES,  YES, YES }, &s_seriesTable   },
    // Series kinds are reported when the submodels are known.
    { KEY_ADD_SUBMODEL,            { YES,         YES,         YES,         YES,  YES, YES }, &s_addSub        },
    { KEY_ALGORITHMIC_MODEL,       { YES,         YES,         YES,         YES,  YES, YES }, &s_algMod        },
    { KEY_END_ALGORITHMIC_MODEL,   { YES,         YES,         YES,         YES,  YES, YES }, &s_algModEndPart },
    { KEY_ISSO_PD,                 { NO,          YES,         YES,         NO,   NO,  NO  }, &s_table         },
    { KEY_ISSO_PU,                 { NO,          YES,         YES,         NO,   NO,  NO  }, &s_table         },
    { KEY_COMPOSITE_CURRENT,       { NO,          YES,         YES,         NO,   NO,  NO  }, &s_composite     },
    { KEY_BEGIN_EMI_MODEL,         { YES,         YES,         YES,         YES,  YES, YES }, &s_emi           },
    { KEY_END_EMI_MODEL,           { YES,         YES,         YES,         YES,  YES, YES }, &s_emiEnd        },
};
// clang-format on

enum { FIRST_CODE = KEY_EXTERNAL_MODEL, LAST_CODE = KEY_END_EMI_MODEL };
static_assert(sizeof s_keywords / sizeof s_keywords[0] == LAST_CODE - FIRST_CODE + 1,
              "one row for each code, in order");

// The class that brought a keyword.
const struct {
    int code;
    int since;
} s_versions[] = {
#define KEY2(number, enumerator, name) {number, 2},
#define KEY3(number, enumerator, name) {number, 3},
#define KEY4(number, enumerator, name) {number, 4},
#define KEY5(number, enumerator, name) {number, 5},
#include "IbisParser/keywords.inc"
#undef KEY2
#undef KEY3
#undef KEY4
#undef KEY5
};

int s_since(int code)
{
    for (const auto& row : s_versions)
        if (row.code == code) return row.since;
    return 2;
}

const Part* s_part(int code)
{
    return s_keywords[code - FIRST_CODE].part;
}

bool s_isAllowed(const MdlTypeInfo* info, int code)
{
    switch (s_keywords[code - FIRST_CODE].allowed[info->group]) {
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
bool s_isDriverData(int code)
{
    return code == KEY_PULLDOWN || code == KEY_PULLUP || code == KEY_RAMP ||
           code == KEY_RISING_WAVEFORM || code == KEY_FALLING_WAVEFORM;
}

void s_checkAllowed(Mdl* model, int code)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info == nullptr || s_isAllowed(info, code)) return;
    if (info->group == MDL_GROUP_RX && s_isDriverData(code)) {
        ERRLOG_LineWarnNew(122, SEC_KeywordName(code), info->name, model->name);
    } else {
        ERRLOG_LineErrorNew(119, SEC_KeywordName(code), info->name, model->name);
        SEC_MarkFound(&model->refused, code - FIRST_CODE);
    }
}

// Blocks with an end keyword of their own that the next keyword finds open.
void s_closeBlocks(Mdl* model, int nextCode)
{
    if (s_reading.algModOpen && nextCode != KEY_END_ALGORITHMIC_MODEL) {
        ERRLOG_LineErrorNew(151, model->name);
        s_reading.algModOpen = 0;
        if (model->algMod != nullptr) ALGMOD_Fini(model->algMod->execs);
    }
    if (nextCode != KEY_END_EXTERNAL_MODEL) EXT_MdlFini(model);
    if (nextCode != KEY_END_EMI_MODEL) MDLEMI_Fini(model);
}

int s_keywordLine(Mdl* model, int code, char* line)
{
    s_closeBlocks(model, code);
    s_reading.code = code;
    s_reading.skip = 0;
    if (code != KEY_COMPOSITE_CURRENT) s_reading.followed = nullptr;

    const char* name = SEC_KeywordName(code);
    const Part* part = s_part(code);
    if (s_since(code) > SEC_Version())
        ERRLOG_LineErrorNew(121, name, MDL_VersionName(s_since(code)));
    s_checkAllowed(model, code);
    if (!part->takesText) SEC_IgnoreText(117, SEC_Argument(line), name);
    const int isFirst = SEC_MarkFound(&model->found, code - FIRST_CODE);
    if (!isFirst && part->repeat != REPEAT_FREE) {
        ERRLOG_LineErrorNew(118, name, model->name);
        s_reading.skip = 1;
        if (part->repeat == REPEAT_DROPPED) return 0;
    }
    return part->begin(model, code, line);
}

int s_dataLine(Mdl* model, int code, char* line)
{
    if (code != s_reading.code) {
        SEC_UnknownKeyword(&s_frame, __LINE__);
        return 0;
    }
    const Part* part = s_part(code);
    if (part->receive == nullptr) {
        ERRLOG_LineErrorNew(116, SEC_KeywordName(code));
        return 0;
    }
    if (s_reading.skip) return 0;
    if (part->names >= 0) MDL_CheckScale(line, part->names);
    return part->receive(model, code, line);
}

// Ends the current keyword.
void s_finishKeyword()
{
    const Part* part = s_reading.code != 0 ? s_part(s_reading.code) : nullptr;
    if (part != nullptr && part->fini != nullptr && !s_reading.skip)
        part->fini(s_reading.open, s_reading.code);
    s_reading.code = 0;
    s_reading.skip = 0;
}

void s_free(Mdl* model)
{
    if (model == s_reading.open) s_reading = {};
    for (RngRange* range :
         {model->C_comp, model->C_comp_pullup, model->C_comp_pulldown, model->C_comp_power_clamp,
          model->C_comp_gnd_clamp, model->temperature, model->voltageRange, model->pullupRef,
          model->pulldownRef, model->powerClampRef, model->gndClampRef, model->externalRef,
          model->TTgnd, model->TTpower, model->Rgnd, model->Rpower, model->Rac, model->Cac})
        RNG_Free(range);
    for (const auto& row : s_tables)
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
    IbisRoot* root = SEC_Root(&s_frame, __LINE__);
    if (root == nullptr) return 0;
    auto* model = static_cast<Mdl*>(SEC_NewRecord(&s_frame, sizeof(Mdl)));
    if (model == nullptr) return 0;
    model->line = PARSE_GetLineNum();
    IBIS_AddMdl(root, model);
    s_reading = {};
    s_reading.open = model;
    MDL_SubParametersBegin();
    return 1;
}

int MDL_ReceiveLine(int kind, int code, char* line)
{
    CMN_ASSERT(line != nullptr);
    if (!SEC_Receives(&s_frame, __LINE__, kind, s_reading.open)) return 0;
    if (code < FIRST_CODE || code > LAST_CODE) {
        SEC_UnknownKeyword(&s_frame, __LINE__);
        return 0;
    }
    return kind == LINE_KEYWORD ? s_keywordLine(s_reading.open, code, line)
                                : s_dataLine(s_reading.open, code, line);
}

int MDL_Fini(int nextCode)
{
    if (s_reading.open == nullptr) return 0;
    s_finishKeyword();
    // Files of later versions hold unknown keywords in mid-model: they do not end it.
    const bool staysOpen = nextCode == NOT_KEY || (nextCode >= FIRST_CODE &&
                                                   nextCode <= LAST_CODE && nextCode != KEY_MODEL);
    if (!staysOpen) MDL_Close();
    return 1;
}

void MDL_Close(void)
{
    if (s_reading.open == nullptr) return;
    s_finishKeyword();
    s_closeBlocks(s_reading.open, NOT_KEY);
    MDL_EndOfRecord(s_reading.open);
    s_reading = {};
}

void MDL_FreeList(Mdl* head)
{
    SEC_FreeList(head, s_free);
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
