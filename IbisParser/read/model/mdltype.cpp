// mdl: the table of model types.
#include "IbisParser/mdl.h"
#include "IbisParser/store/section.h"

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
const MdlTypeInfo typeRows[] = {
    // name              type                since receives drives floats  pullup pulldown ramp  group                    ecl    diff   defaults Vinl    Vinh
    { "Input",           MDL_INPUT,          2,   true,  false, false,    FORB,  FORB,    FORB, RX,                      false, false, true,    0.8,    2.0    },
    { "Output",          MDL_OUTPUT,         2,   false, true,  false,    REQ,   REQ,     REQ,  TX,                      false, false, false,   0.0,    0.0    },
    { "I/O",             MDL_IO,             2,   true,  true,  true,     REQ,   REQ,     REQ,  IO,                      false, false, true,    0.8,    2.0    },
    { "3-state",         MDL_3_STATE,        2,   false, true,  true,     REQ,   REQ,     REQ,  TX,                      false, false, false,   0.0,    0.0    },
    { "Open_drain",      MDL_OPEN_DRAIN,     2,   false, true,  true,     ZERO,  REQ,     REQ,  TX,                      false, false, false,   0.0,    0.0    },
    { "I/O_open_drain",  MDL_IO_OPEN_DRAIN,  2,   true,  true,  true,     ZERO,  REQ,     REQ,  IO,                      false, false, true,    0.8,    2.0    },
    { "Open_sink",       MDL_OPEN_SINK,      2,   false, true,  true,     ZERO,  REQ,     REQ,  TX,                      false, false, false,   0.0,    0.0    },
    { "I/O_open_sink",   MDL_IO_OPEN_SINK,   2,   true,  true,  true,     ZERO,  REQ,     REQ,  IO,                      false, false, true,    0.8,    2.0    },
    { "Open_source",     MDL_OPEN_SOURCE,    2,   false, true,  true,     REQ,   ZERO,    REQ,  TX,                      false, false, false,   0.0,    0.0    },
    { "I/O_open_source", MDL_IO_OPEN_SOURCE, 2,   true,  true,  true,     REQ,   ZERO,    REQ,  IO,                      false, false, true,    0.8,    2.0    },
    { "Input_ECL",       MDL_INPUT_ECL,      2,   true,  false, false,    FORB,  FORB,    FORB, RX,                      true,  false, true,   -1.475, -1.165  },
    { "Output_ECL",      MDL_OUTPUT_ECL,     2,   false, true,  false,    REQ,   REQ,     REQ,  TX,                      true,  false, false,   0.0,    0.0    },
    { "I/O_ECL",         MDL_IO_ECL,         2,   true,  true,  true,     REQ,   REQ,     REQ,  IO,                      true,  false, true,   -1.475, -1.165  },
    { "3-state_ECL",     MDL_3_STATE_ECL,    3,   false, true,  true,     REQ,   REQ,     REQ,  TX,                      true,  false, false,   0.0,    0.0    },
    { "Terminator",      MDL_TERMINATOR,     2,   false, false, false,    FORB,  FORB,    FORB, MDL_GROUP_TERMINATOR,    false, false, false,   0.0,    0.0    },
    { "Series",          MDL_SERIES,         3,   false, false, false,    FORB,  FORB,    FORB, MDL_GROUP_SERIES,        false, false, false,   0.0,    0.0    },
    { "Series_switch",   MDL_SERIES_SWITCH,  3,   false, false, false,    FORB,  FORB,    FORB, MDL_GROUP_SERIES_SWITCH, false, false, false,   0.0,    0.0    },
    { "Input_diff",      MDL_INPUT_DIFF,     4,   true,  false, false,    OPT,   OPT,     FORB, RX,                      false, true,  false,   0.0,    0.0    },
    { "Output_diff",     MDL_OUTPUT_DIFF,    4,   false, true,  false,    OPT,   OPT,     OPT,  TX,                      false, true,  false,   0.0,    0.0    },
    { "I/O_diff",        MDL_IO_DIFF,        4,   true,  true,  true,     OPT,   OPT,     OPT,  IO,                      false, true,  false,   0.0,    0.0    },
    { "3-state_diff",    MDL_3_STATE_DIFF,   4,   false, true,  true,     OPT,   OPT,     OPT,  TX,                      false, true,  false,   0.0,    0.0    },
};
// clang-format on

static_assert(sizeof typeRows / sizeof typeRows[0] == MDL_TYPE_COUNT - 1, "one row for each type");

}  // namespace

const MdlTypeInfo* MDL_TypeInfo(int type)
{
    return type > MDL_TYPE_UNSET && type < MDL_TYPE_COUNT ? &typeRows[type - 1] : nullptr;
}

const MdlTypeInfo* MDL_TypeByName(const char* name)
{
    CMN_ASSERT(name != nullptr);
    return SEC_FindRow(typeRows, name);
}
