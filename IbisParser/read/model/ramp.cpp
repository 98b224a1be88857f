// [Ramp] of models and submodels.
#include "IbisParser/ramp.h"

#include <cmath>

#include "IbisParser/base/corner.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/cmn.h"
#include "IbisParser/krng.h"
#include "IbisParser/store/section.h"

static const char s_Module[] = "IbisParser/ramp";

static constexpr double s_defaultLoad = 50.0;

static const struct {
    const char* name;
    RampSlope (Ramp::*slopes)[CORNER_COUNT];  // null: R_load
} s_items[] = {
    {"dV/dt_r", &Ramp::rise},
    {"dV/dt_f", &Ramp::fall},
    {"R_load", nullptr},
};

// One half of a slope, a number with its scale letter.
static int s_half(const char* text, const char* column, const char* name, double* value)
{
    const int result = CMN_Get_Value(text, value);
    if (result == 0 || !std::isfinite(*value)) return 0;
    if (result == 2) ERRLOG_LineWarnNew(1910, name, column, text);
    return 1;
}

// One "dV/dt". Nothing is stored but the state when it cannot be used.
static void s_slope(const char* text, int corner, const char* name, RampSlope* out)
{
    const char* column = CORNER_Title(corner);
    out->state = CELL_NA;
    if (corner != CORNER_TYP && CMN_StrSameIC(text, "NA")) return;

    SecArgs args;
    if (!CMN_ArgParsePlus(text, 3, '/', &args)) {
        ERRLOG_LineBugNew(1600, name, s_Module, __LINE__);
        return;
    }
    RampSlope slope = {0.0, 0.0, CELL_NUMBER};
    if (args.argc != 3 || std::strcmp(args.argv[1], "/") != 0 ||
        !s_half(args.argv[0], column, name, &slope.dV) ||
        !s_half(args.argv[2], column, name, &slope.dt))
        ERRLOG_LineErrorNew(1603, name, column, text);
    else if (slope.dV <= 0.0 || slope.dt <= 0.0)
        ERRLOG_LineErrorNew(1604, name, column);
    else
        *out = slope;
}

static void s_slopes(const CmnArgs* args, const char* name, RampSlope* slopes)
{
    if (slopes[CORNER_TYP].state != CELL_ABSENT) {
        ERRLOG_LineErrorNew(1602, name);
        return;
    }
    // The record begins with a slope, whose own address tells the line of the keyword.
    PLACE_Remember(&slopes[CORNER_TYP].dt);
    for (int corner = 0; corner < CORNER_COUNT; ++corner)
        s_slope(corner + 1 < args->nStored ? args->argv[corner + 1] : "", corner, name,
                &slopes[corner]);
    if (args->nStored > CORNER_COUNT + 1)
        ERRLOG_LineErrorNew(1603, name, "Surplus", args->argv[CORNER_COUNT + 1]);
}

static void s_load(const CmnArgs* args, const char* name, RngSingle* load)
{
    if (load->state != CELL_ABSENT) {
        ERRLOG_LineErrorNew(1602, name);
        return;
    }
    if (!KRNG_SetSingle(load, args, name)) return;
    if (load->value <= 0.0) {
        ERRLOG_LineErrorNew(1605);
        *load = {s_defaultLoad, CELL_NA};
    }
}

int RAMP_KeywordLine(Ramp** slot)
{
    CMN_ASSERT(slot != nullptr && *slot == nullptr);
    void* block = nullptr;
    if (!CMN_malloc(&block, sizeof(Ramp))) return 0;
    *slot = static_cast<Ramp*>(block);
    PLACE_Remember(*slot);
    (*slot)->R_load.value = s_defaultLoad;
    return 1;
}

int RAMP_ReceiveLine(Ramp* ramp, const char* line)
{
    CMN_ASSERT(ramp != nullptr && line != nullptr);
    SecArgs args;
    if (!KRNG_Split(line, CORNER_COUNT + 2, &args)) {
        ERRLOG_LineBugNew(1600, "Ramp", s_Module, __LINE__);
        return 0;
    }
    const auto* item = args.nStored > 0 ? SEC_FindRow(s_items, args.argv[0]) : nullptr;
    if (item == nullptr)
        ERRLOG_LineErrorNew(1601, args.nStored > 0 ? args.argv[0] : line);
    else if (item->slopes != nullptr)
        s_slopes(&args, item->name, ramp->*(item->slopes));
    else
        s_load(&args, item->name, &ramp->R_load);
    return item != nullptr;
}

void RAMP_Free(Ramp* ramp)
{
    if (ramp != nullptr) SEC_FreeRecord(ramp);
}
