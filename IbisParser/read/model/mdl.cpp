// mdl: life cycle of [Model] and the dispatch of its keywords and lines.
#include "IbisParser/mdl.h"

#include <initializer_list>

#include "IbisParser/algmod.h"
#include "IbisParser/base/keyword.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/ext.h"
#include "IbisParser/isso.h"
#include "IbisParser/read/model/mdl.h"
#include "IbisParser/store/life.h"
#include "IbisParser/vitbl.h"
#include "IbisParser/wvfrm.h"

static const char s_Module[] = "IbisParser/mdl";

namespace {

const SecFrame frame = {s_Module, 100, 101, 102, 103, 104, 105, 116};

// Whether the type groups allow a keyword, in the order of MdlGroup; "by type": the type's row
// says.
enum Allowed { NO, YES, BY_PULLUP, BY_PULLDOWN, BY_RAMP };
struct Groups {
    Allowed in[MDL_GROUP_COUNT];
};

struct Keyword : SecKeyword<Mdl> {
    Groups allowed;
};

// The model that is being read.
struct Reading : SecReading<Mdl, Keyword, &Mdl::found> {
    char* line = nullptr;       // being read, its keyword included
    bool algModOpen = false;    // [End Algorithmic Model] has not come
    Wvfrm* waveform = nullptr;  // the last one
    Wvfrm* followed = nullptr;  // the same while only [Composite Current] keywords follow it
} reading;

// Data lines with values, behind so many names.
template <int (*receive)(Mdl*, const char*), int names = 0>
int values(Mdl* model, char* line)
{
    MDL_CheckScale(line, names);
    return receive(model, line);
}

// [Model] itself.

int modelLine(Mdl* model, char* text)
{
    return MDL_NameLine(model->name, text, KEY_MODEL, LIMIT_SIGNAL, 115, 117);
}

// Ranges on the keyword line.

int rangeLine(Mdl* model, const char* text)
{
    MDL_CheckScale(text, 0);
    return MDL_RangeLine(model, reading.keyword->code, text);
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

Vitbl** tableSlot(Mdl* model)
{
    for (const auto& row : tableRows)
        if (row.code == reading.keyword->code) return &(model->*(row.slot));
    CMN_AssertFailed(s_Module, __LINE__);
}

int tableBegin(Mdl* model)
{
    return VITBL_New(tableSlot(model), SEC_KeywordName(reading.keyword->code), model->name);
}

int tableLine(Mdl* model, const char* line)
{
    return VITBL_ReceiveLine(*tableSlot(model), line);
}

int tableFini(Mdl* model)
{
    return VITBL_Fini(*tableSlot(model));
}

// Waveforms and what follows them.

int waveBegin(Mdl* model)
{
    const int code = reading.keyword->code;
    reading.waveform = nullptr;
    const int done = WVFRM_New(code == KEY_RISING_WAVEFORM ? &model->rising : &model->falling, code,
                               model->name, &reading.waveform);
    reading.followed = reading.waveform;
    return done;
}

int waveLine(Mdl*, const char* line)
{
    return reading.waveform != nullptr && WVFRM_ReceiveLine(reading.waveform, line);
}

int waveFini(Mdl*)
{
    return reading.waveform != nullptr && WVFRM_Fini(reading.waveform);
}

int compositeBegin(Mdl* model, const char* text)
{
    if (model->rising == nullptr && model->falling == nullptr) {
        ERRLOG_LineErrorNew(153);
        reading.skips = true;
        return 0;
    }
    return ISSO_KeywordLine(model, reading.followed, text);
}

int compositeLine(Mdl* model, const char* line)
{
    return ISSO_ReceiveLine(model, reading.followed, line);
}

int compositeFini(Mdl* model)
{
    return ISSO_Fini(model, reading.followed);
}

// [Ramp].

int rampBegin(Mdl* model)
{
    return RAMP_KeywordLine(&model->ramp);
}

int rampLine(Mdl* model, const char* line)
{
    return model->ramp != nullptr && RAMP_ReceiveLine(model->ramp, line);
}

// Series elements.

int seriesBegin(Mdl* model, const char* text)
{
    MDL_CheckScale(text, 0);
    return SEREL_KeywordLine(model, reading.keyword->code, text);
}

// [Algorithmic Model].

int algModBegin(Mdl* model)
{
    reading.algModOpen = true;
    return ALGMOD_New(reading.line, &model->algMod);
}

int algModLine(Mdl* model, char* line)
{
    return model->algMod != nullptr && ALGMOD_ReceiveLine(line, &model->algMod->execs);
}

int algModEnd(Mdl* model)
{
    if (!reading.algModOpen) {
        ERRLOG_LineErrorNew(152);
        return 0;
    }
    reading.algModOpen = false;
    return model->algMod != nullptr && ALGMOD_Fini(model->algMod->execs);
}

// clang-format off
//                            RX           TX           IO           Term  Series Switch
const Groups everywhere  = {{ YES,         YES,         YES,         YES,  YES,   YES }};
const Groups buffers     = {{ YES,         YES,         YES,         YES,  NO,    NO  }};
const Groups receivers   = {{ YES,         NO,          YES,         NO,   NO,    NO  }};
const Groups drivers     = {{ NO,          YES,         YES,         NO,   NO,    NO  }};
const Groups terminators = {{ NO,          NO,          NO,          YES,  NO,    NO  }};
const Groups pulldowns   = {{ BY_PULLDOWN, BY_PULLDOWN, BY_PULLDOWN, NO,   NO,    NO  }};
const Groups pullups     = {{ BY_PULLUP,   BY_PULLUP,   BY_PULLUP,   NO,   NO,    NO  }};
const Groups ramps       = {{ BY_RAMP,     BY_RAMP,     BY_RAMP,     NO,   NO,    NO  }};

// In the order of the record's bits.
const Keyword modelRows[] = {
    //                               flags                begin                data line                      finish            allowed
    { { KEY_EXTERNAL_MODEL,          SEC_TEXT,            EXT_MdlNew,          EXT_MdlReceiveLine,            nullptr        }, everywhere  },
    { { KEY_END_EXTERNAL_MODEL,      SEC_TEXT,            EXT_MdlEnd,          nullptr,                       nullptr        }, everywhere  },
    { { KEY_MODEL,                   SEC_ONCE | SEC_TEXT, modelLine,           values<MDL_SubParameter>,      nullptr        }, everywhere  },
    { { KEY_TEMPERATURE_RANGE,       SEC_ONCE | SEC_TEXT, rangeLine,           nullptr,                       nullptr        }, everywhere  },
    { { KEY_VOLTAGE_RANGE,           SEC_ONCE | SEC_TEXT, rangeLine,           nullptr,                       nullptr        }, everywhere  },
    { { KEY_PULLUP_REFERENCE,        SEC_ONCE | SEC_TEXT, rangeLine,           nullptr,                       nullptr        }, everywhere  },
    { { KEY_PULLDOWN_REFERENCE,      SEC_ONCE | SEC_TEXT, rangeLine,           nullptr,                       nullptr        }, everywhere  },
    { { KEY_POWER_CLAMP_REFERENCE,   SEC_ONCE | SEC_TEXT, rangeLine,           nullptr,                       nullptr        }, everywhere  },
    { { KEY_GND_CLAMP_REFERENCE,     SEC_ONCE | SEC_TEXT, rangeLine,           nullptr,                       nullptr        }, everywhere  },
    { { KEY_EXTERNAL_REFERENCE,      SEC_ONCE | SEC_TEXT, rangeLine,           nullptr,                       nullptr        }, everywhere  },
    { { KEY_PULLDOWN,                SEC_ONCE,            tableBegin,          values<tableLine>,             tableFini      }, pulldowns   },
    { { KEY_PULLUP,                  SEC_ONCE,            tableBegin,          values<tableLine>,             tableFini      }, pullups     },
    { { KEY_GND_CLAMP,               SEC_ONCE,            tableBegin,          values<tableLine>,             tableFini      }, buffers     },
    { { KEY_POWER_CLAMP,             SEC_ONCE,            tableBegin,          values<tableLine>,             tableFini      }, buffers     },
    { { KEY_RGND,                    SEC_ONCE | SEC_TEXT, rangeLine,           nullptr,                       nullptr        }, terminators },
    { { KEY_RPOWER,                  SEC_ONCE | SEC_TEXT, rangeLine,           nullptr,                       nullptr        }, terminators },
    { { KEY_RAC,                     SEC_ONCE | SEC_TEXT, rangeLine,           nullptr,                       nullptr        }, terminators },
    { { KEY_CAC,                     SEC_ONCE | SEC_TEXT, rangeLine,           nullptr,                       nullptr        }, terminators },
    { { KEY_RAMP,                    SEC_ONCE,            rampBegin,           values<rampLine>,              nullptr        }, ramps       },
    { { KEY_RISING_WAVEFORM,         0,                   waveBegin,           values<waveLine>,              waveFini       }, drivers     },
    { { KEY_FALLING_WAVEFORM,        0,                   waveBegin,           values<waveLine>,              waveFini       }, drivers     },
    { { KEY_TTGND,                   SEC_ONCE | SEC_TEXT, rangeLine,           nullptr,                       nullptr        }, buffers     },
    { { KEY_TTPOWER,                 SEC_ONCE | SEC_TEXT, rangeLine,           nullptr,                       nullptr        }, buffers     },
    { { KEY_MODEL_SPEC,              SEC_ONCE,            MDLSPEC_KeywordLine, values<MDLSPEC_ReceiveLine>,   MDLSPEC_Fini   }, buffers     },
    { { KEY_RECEIVER_THRESHOLDS,     SEC_ONCE,            RCVTH_KeywordLine,   values<RCVTH_ReceiveLine>,     RCVTH_Fini     }, receivers   },
    { { KEY_DRIVER_SCHEDULE,         SEC_ONCE,            DRVSH_KeywordLine,   values<DRVSH_ReceiveLine, 1>,  DRVSH_Fini     }, drivers     },
    // The series elements judge the type themselves.
    { { KEY_ON,                      SEC_ONCE_LINES,      seriesBegin,         nullptr,                       nullptr        }, everywhere  },
    { { KEY_OFF,                     SEC_ONCE_LINES,      seriesBegin,         nullptr,                       nullptr        }, everywhere  },
    { { KEY_R_SERIES,                SEC_TEXT,            seriesBegin,         nullptr,                       nullptr        }, everywhere  },
    { { KEY_L_SERIES,                SEC_TEXT,            seriesBegin,         nullptr,                       nullptr        }, everywhere  },
    { { KEY_RL_SERIES,               SEC_TEXT,            seriesBegin,         nullptr,                       nullptr        }, everywhere  },
    { { KEY_C_SERIES,                SEC_TEXT,            seriesBegin,         nullptr,                       nullptr        }, everywhere  },
    { { KEY_LC_SERIES,               SEC_TEXT,            seriesBegin,         nullptr,                       nullptr        }, everywhere  },
    { { KEY_RC_SERIES,               SEC_TEXT,            seriesBegin,         nullptr,                       nullptr        }, everywhere  },
    { { KEY_SERIES_CURRENT,          0,                   seriesBegin,         values<SEREL_ReceiveLine>,     SEREL_Fini     }, everywhere  },
    { { KEY_SERIES_MOSFET,           0,                   seriesBegin,         values<SEREL_ReceiveLine>,     SEREL_Fini     }, everywhere  },
    // Series kinds are reported when the submodels are known.
    { { KEY_ADD_SUBMODEL,            SEC_ONCE,            ADDSUB_KeywordLine,  ADDSUB_ReceiveLine,            ADDSUB_Fini    }, everywhere  },
    { { KEY_ALGORITHMIC_MODEL,       SEC_TEXT,            algModBegin,         algModLine,                    nullptr        }, everywhere  },
    { { KEY_END_ALGORITHMIC_MODEL,   0,                   algModEnd,           nullptr,                       nullptr        }, everywhere  },
    { { KEY_ISSO_PD,                 SEC_ONCE,            tableBegin,          values<tableLine>,             tableFini      }, drivers     },
    { { KEY_ISSO_PU,                 SEC_ONCE,            tableBegin,          values<tableLine>,             tableFini      }, drivers     },
    { { KEY_COMPOSITE_CURRENT,       0,                   compositeBegin,      values<compositeLine>,         compositeFini  }, drivers     },
    { { KEY_BEGIN_EMI_MODEL,         SEC_ONCE_LINES,      MDLEMI_Begin,        MDLEMI_ReceiveLine,            nullptr        }, everywhere  },
    { { KEY_END_EMI_MODEL,           0,                   MDLEMI_End,          nullptr,                       nullptr        }, everywhere  },
};
// clang-format on

std::size_t placeOf(int code)
{
    const Keyword* row = SEC_FindKeyword<Keyword>(modelRows, code);
    if (row == nullptr) CMN_AssertFailed(s_Module, __LINE__);
    return static_cast<std::size_t>(row - modelRows);
}

bool isAllowed(const MdlTypeInfo* info, const Keyword& row)
{
    switch (row.allowed.in[info->group]) {
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

void checkAllowed(Mdl* model, const Keyword& row)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info == nullptr || isAllowed(info, row)) return;
    const char* name = SEC_KeywordName(row.code);
    if (info->group == MDL_GROUP_RX && isDriverData(row.code)) {
        ERRLOG_LineWarnNew(122, name, info->name, model->name);
    } else {
        ERRLOG_LineErrorNew(119, name, info->name, model->name);
        SEC_MarkFound(&model->refused, static_cast<int>(&row - modelRows));
    }
}

// Blocks with an end keyword of their own that the next keyword finds open.
void closeBlocks(Mdl* model, int nextCode)
{
    if (reading.algModOpen && nextCode != KEY_END_ALGORITHMIC_MODEL) {
        ERRLOG_LineErrorNew(151, model->name);
        reading.algModOpen = false;
        if (model->algMod != nullptr) ALGMOD_Fini(model->algMod->execs);
    }
    if (nextCode != KEY_END_EXTERNAL_MODEL) EXT_MdlFini(model);
    if (nextCode != KEY_END_EMI_MODEL) MDLEMI_Fini(model);
}

int judge(Mdl* model, const Keyword& row, char* text)
{
    closeBlocks(model, row.code);
    if (row.code != KEY_COMPOSITE_CURRENT) reading.followed = nullptr;
    const char* name = SEC_KeywordName(row.code);
    const int since = KEYWORD_Row(row.code)->since;
    if (since > SEC_Version()) ERRLOG_LineErrorNew(121, name, VERSION_Since(since));
    checkAllowed(model, row);
    if ((row.flags & SEC_TEXT) == 0) SEC_IgnoreText(117, text, name);
    if (reading.isRepeated && (row.flags & (SEC_ONCE | SEC_ONCE_LINES)) != 0)
        ERRLOG_LineErrorNew(118, name, model->name);
    return 1;
}

// The rest of the record's end is in mdlend.
void end(Mdl* model)
{
    closeBlocks(model, NOT_KEY);
    MDL_EndOfRecord(model);
}

int prepare(Mdl*)
{
    MDL_SubParametersBegin();
    return 1;
}

void release(Mdl* model)
{
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

const SecLife<Reading> life = {
    .reading = &reading,
    .frame = frame,
    .opener = KEY_MODEL,
    .subject = SUBJECT_MODEL,
    .rows = modelRows,
    .add = IBIS_AddMdl,
    .release = release,
    .prepare = prepare,
    .judge = judge,
    .end = end,
};

}  // namespace

int MDL_Found(const Mdl* model, int code)
{
    CMN_ASSERT(model != nullptr);
    return (model->found >> placeOf(code) & 1u) != 0;
}

int MDL_Refused(const Mdl* model, int code)
{
    CMN_ASSERT(model != nullptr);
    return (model->refused >> placeOf(code) & 1u) != 0;
}

int MDL_Init()
{
    return life.Init();
}

int MDL_ReceiveLine(int kind, int code, char* line)
{
    reading.line = line;
    return life.ReceiveLine(kind, code, line);
}

int MDL_Fini(int nextCode)
{
    return life.Fini(nextCode);
}

void MDL_Close()
{
    life.Close();
}

void MDL_FreeList(Mdl* head)
{
    life.FreeList(head);
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
