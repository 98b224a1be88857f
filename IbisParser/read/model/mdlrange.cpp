// mdl: keywords whose typ, min and max stand on the keyword line, and the reference voltages.
#include <cmath>

#include "IbisParser/base/raise.h"
#include "IbisParser/krng.h"
#include "IbisParser/read/model/mdl.h"

static const char s_Module[] = "IbisParser/mdlrange";

namespace {

constexpr double LargestVoltage = 50.0;
constexpr double LowestTemperature = -100.0;
constexpr double HighestTemperature = 300.0;

enum Rule { RULE_TEMPERATURE, RULE_SUPPLY, RULE_TRANSIT_TIME, RULE_ELEMENT };

// clang-format off
const struct { int code; RngRange* Mdl::*slot; Rule rule; } ranges[] = {
    { KEY_TEMPERATURE_RANGE,     &Mdl::temperature,   RULE_TEMPERATURE  },
    { KEY_VOLTAGE_RANGE,         &Mdl::voltageRange,  RULE_SUPPLY       },
    { KEY_PULLUP_REFERENCE,      &Mdl::pullupRef,     RULE_SUPPLY       },
    { KEY_PULLDOWN_REFERENCE,    &Mdl::pulldownRef,   RULE_SUPPLY       },
    { KEY_POWER_CLAMP_REFERENCE, &Mdl::powerClampRef, RULE_SUPPLY       },
    { KEY_GND_CLAMP_REFERENCE,   &Mdl::gndClampRef,   RULE_SUPPLY       },
    { KEY_EXTERNAL_REFERENCE,    &Mdl::externalRef,   RULE_SUPPLY       },
    { KEY_RGND,                  &Mdl::Rgnd,          RULE_ELEMENT      },
    { KEY_RPOWER,                &Mdl::Rpower,        RULE_ELEMENT      },
    { KEY_RAC,                   &Mdl::Rac,           RULE_ELEMENT      },
    { KEY_CAC,                   &Mdl::Cac,           RULE_ELEMENT      },
    { KEY_TTGND,                 &Mdl::TTgnd,         RULE_TRANSIT_TIME },
    { KEY_TTPOWER,               &Mdl::TTpower,       RULE_TRANSIT_TIME },
};

// By MdlRef.
const struct { RngRange* Mdl::*own; bool orVoltageRange; } references[] = {
    { &Mdl::pullupRef,     true  },
    { &Mdl::pulldownRef,   false },
    { &Mdl::powerClampRef, true  },
    { &Mdl::gndClampRef,   false },
};
// clang-format on

void checkTemperature(const Mdl* model, const RngRange* range)
{
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const RngSingle cell = MDL_Cell(range, corner);
        if (MDL_IsNumber(cell) &&
            (cell.value < LowestTemperature || cell.value > HighestTemperature))
            ERRLOG_LineWarnNew(144, model->name, cell.value);
    }
}

void checkSupply(const Mdl* model, int code, const RngRange* range)
{
    const char* name = SEC_KeywordName(code);
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const RngSingle cell = MDL_Cell(range, corner);
        if (MDL_IsNumber(cell) && std::fabs(cell.value) > LargestVoltage)
            ERRLOG_LineWarnNew(145, model->name, name, cell.value);
    }
    const RngSingle min = MDL_Cell(range, CORNER_MIN);
    const RngSingle max = MDL_Cell(range, CORNER_MAX);
    if (MDL_IsNumber(min) && MDL_IsNumber(max) && min.value > max.value)
        ERRLOG_LineNoteNew(142, model->name, name, min.value, max.value);

    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    const RngSingle typ = MDL_Cell(range, CORNER_TYP);
    if (code == KEY_VOLTAGE_RANGE && info != nullptr && !info->ecl && MDL_IsNumber(typ) &&
        typ.value <= 0.0)
        ERRLOG_LineWarnNew(156, model->name);
}

void check(const Mdl* model, int code, Rule rule, const RngRange* range)
{
    switch (rule) {
        case RULE_TEMPERATURE:
            checkTemperature(model, range);
            break;
        case RULE_SUPPLY:
            checkSupply(model, code, range);
            break;
        case RULE_TRANSIT_TIME:
            if (MDL_Least(range) < 0.0)
                ERRLOG_LineErrorNew(147, model->name, SEC_KeywordName(code));
            break;
        case RULE_ELEMENT:
            if (MDL_Least(range) <= 0.0)
                ERRLOG_LineErrorNew(148, model->name, SEC_KeywordName(code));
            break;
    }
}

}  // namespace

RngSingle MDL_Cell(const RngRange* range, int corner)
{
    CMN_ASSERT(corner >= 0 && corner < CORNER_COUNT);
    if (range == nullptr) return {0.0, CELL_ABSENT};
    switch (corner) {
        case CORNER_MIN:
            return {range->min, range->minState};
        case CORNER_MAX:
            return {range->max, range->maxState};
        default:
            return {range->typ, range->typState};
    }
}

RngSingle MDL_CellOrTyp(const RngRange* range, int corner)
{
    const RngSingle cell = MDL_Cell(range, corner);
    return MDL_IsNumber(cell) ? cell : MDL_Cell(range, CORNER_TYP);
}

double MDL_Least(const RngRange* range)
{
    double least = INFINITY;
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const RngSingle cell = MDL_Cell(range, corner);
        if (MDL_IsNumber(cell)) least = std::fmin(least, cell.value);
    }
    return least;
}

int MDL_RangeLine(Mdl* model, int code, const char* text)
{
    CMN_ASSERT(model != nullptr && text != nullptr);
    for (const auto& row : ranges) {
        if (row.code != code) continue;
        RngRange** slot = &(model->*(row.slot));
        const int done = KRNG_SetRange(slot, text, SEC_KeywordName(code));
        check(model, code, row.rule, *slot);
        return done;
    }
    return 0;
}

int MDL_RefVoltage(const Mdl* model, int which, int corner, double* out)
{
    CMN_ASSERT(model != nullptr && out != nullptr);
    CMN_ASSERT(which >= MDL_REF_PULLUP && which <= MDL_REF_GND_CLAMP);
    const auto& row = references[which];
    RngSingle cell = MDL_CellOrTyp(model->*(row.own), corner);
    if (!MDL_IsNumber(cell) && !row.orVoltageRange) cell = {0.0, CELL_NUMBER};
    if (!MDL_IsNumber(cell)) cell = MDL_CellOrTyp(model->voltageRange, corner);
    if (!MDL_IsNumber(cell)) return 0;
    *out = cell.value;
    return 1;
}
