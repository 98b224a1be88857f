// mdl: the table of model types.
#include "IbisParser/mdl.h"
#include "IbisParser/section_internal.h"

static const char s_Module[] = "IbisParser/mdltype";

namespace {

constexpr int FORB = MDL_FORBIDDEN;
constexpr int OPT = MDL_OPTIONAL;
constexpr int REQ = MDL_REQUIRED;
constexpr int ZERO = MDL_ZERO;
constexpr int RX = MDL_GROUP_RX;
constexpr int TX = MDL_GROUP_TX;
constexpr int IO = MDL_GROUP_IO;

// Open_drain is the older word for Open_sink. An open type's other side is driven by nothing in
// the buffer, so its table, where given at all, holds zeros.
// clang-format off
const MdlTypeInfo s_types[] = {
    // type               name              since receives drives floats  pullup pulldown ramp  group                    ecl    diff   defaults Vinl    Vinh
    { MDL_INPUT,          "Input",           2,   true,  false, false,    FORB,  FORB,    FORB, RX,                      false, false, true,    0.8,    2.0    },
    { MDL_OUTPUT,         "Output",          2,   false, true,  false,    REQ,   REQ,     REQ,  TX,                      false, false, false,   0.0,    0.0    },
    { MDL_IO,             "I/O",             2,   true,  true,  true,     REQ,   REQ,     REQ,  IO,                      false, false, true,    0.8,    2.0    },
    { MDL_3_STATE,        "3-state",         2,   false, true,  true,     REQ,   REQ,     REQ,  TX,                      false, false, false,   0.0,    0.0    },
    { MDL_OPEN_DRAIN,     "Open_drain",      2,   false, true,  true,     ZERO,  REQ,     REQ,  TX,                      false, false, false,   0.0,    0.0    },
    { MDL_IO_OPEN_DRAIN,  "I/O_open_drain",  2,   true,  true,  true,     ZERO,  REQ,     REQ,  IO,                      false, false, true,    0.8,    2.0    },
    { MDL_OPEN_SINK,      "Open_sink",       2,   false, true,  true,     ZERO,  REQ,     REQ,  TX,                      false, false, false,   0.0,    0.0    },
    { MDL_IO_OPEN_SINK,   "I/O_open_sink",   2,   true,  true,  true,     ZERO,  REQ,     REQ,  IO,                      false, false, true,    0.8,    2.0    },
    { MDL_OPEN_SOURCE,    "Open_source",     2,   false, true,  true,     REQ,   ZERO,    REQ,  TX,                      false, false, false,   0.0,    0.0    },
    { MDL_IO_OPEN_SOURCE, "I/O_open_source", 2,   true,  true,  true,     REQ,   ZERO,    REQ,  IO,                      false, false, true,    0.8,    2.0    },
    { MDL_INPUT_ECL,      "Input_ECL",       2,   true,  false, false,    FORB,  FORB,    FORB, RX,                      true,  false, true,   -1.475, -1.165  },
    { MDL_OUTPUT_ECL,     "Output_ECL",      2,   false, true,  false,    REQ,   REQ,     REQ,  TX,                      true,  false, false,   0.0,    0.0    },
    { MDL_IO_ECL,         "I/O_ECL",         2,   true,  true,  true,     REQ,   REQ,     REQ,  IO,                      true,  false, true,   -1.475, -1.165  },
    { MDL_3_STATE_ECL,    "3-state_ECL",     3,   false, true,  true,     REQ,   REQ,     REQ,  TX,                      true,  false, false,   0.0,    0.0    },
    { MDL_TERMINATOR,     "Terminator",      2,   false, false, false,    FORB,  FORB,    FORB, MDL_GROUP_TERMINATOR,    false, false, false,   0.0,    0.0    },
    { MDL_SERIES,         "Series",          3,   false, false, false,    FORB,  FORB,    FORB, MDL_GROUP_SERIES,        false, false, false,   0.0,    0.0    },
    { MDL_SERIES_SWITCH,  "Series_switch",   3,   false, false, false,    FORB,  FORB,    FORB, MDL_GROUP_SERIES_SWITCH, false, false, false,   0.0,    0.0    },
    { MDL_INPUT_DIFF,     "Input_diff",      4,   true,  false, false,    OPT,   OPT,     FORB, RX,                      false, true,  false,   0.0,    0.0    },
    { MDL_OUTPUT_DIFF,    "Output_diff",     4,   false, true,  false,    OPT,   OPT,     OPT,  TX,                      false, true,  false,   0.0,    0.0    },
    { MDL_IO_DIFF,        "I/O_diff",        4,   true,  true,  true,     OPT,   OPT,     OPT,  IO,                      false, true,  false,   0.0,    0.0    },
    { MDL_3_STATE_DIFF,   "3-state_diff",    4,   false, true,  true,     OPT,   OPT,     OPT,  TX,                      false, true,  false,   0.0,    0.0    },
};
// clang-format on

static_assert(sizeof s_types / sizeof s_types[0] == MDL_TYPE_COUNT - 1, "one row for each type");

}  // namespace

const MdlTypeInfo* MDL_TypeInfo(int type)
{
    return type > MDL_TYPE_UNSET && type < MDL_TYPE_COUNT ? &s_types[type - 1] : nullptr;
}

const MdlTypeInfo* MDL_TypeByName(const char* name)
{
    CMN_ASSERT(name != nullptr);
    return SEC_FindRow(s_types, name);
}
