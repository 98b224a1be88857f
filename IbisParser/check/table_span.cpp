// Spans, signs and zero crossings of a model's tables.
#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "IbisParser/acdc.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/curve.h"
#include "IbisParser/cmn.h"
#include "IbisParser/mdl.h"
#include "IbisParser/read/model/table.h"
#include "IbisParser/serel.h"

// Ampere, but for the shares.
#define NO_CURRENT 1e-6   // a table that stays below carries nothing
#define ZERO_FLOOR 50e-6  // at the reference voltage
#define ZERO_SHARE 0.05   // of the largest current between the rails
#define WRONG_SIGN 1e-3   // of a clamp beyond its rail
#define TERMINATION 1e-3  // of the clamps at mid supply
#define TWIN_FLOOR 10e-6  // of clamps that carry the same current
#define TWIN_SHARE 0.01
#define CONTAINED_FLOOR 10e-3  // of a clamp that the drive table contains
#define CONTAINED_SHARE 0.05
#define TOO_MUCH 1.0         // between the rails
#define STRONGER 1.1         // minimum over maximum corner
#define ECL_SPAN 2.2         // volt
#define SPAN_TOLERANCE 0.05  // of the supply

static const char s_typ[] = "typ";

// What a table must cover, in parts of its supply.
enum SupplyKind { DRIVE_SUPPLY, CLAMP_SUPPLY, RANGE_SUPPLY };

static const struct Coverage {
    const char* name;
    SupplyKind supply;
    double fullLow, fullHigh;
    double mustLow, mustHigh;
} s_pulldown = {"Pulldown", DRIVE_SUPPLY, -1, 2, 0, 1},
  s_pullup = {"Pullup", DRIVE_SUPPLY, -1, 2, 0, 1},
  s_gndClamp = {"GND Clamp", CLAMP_SUPPLY, -1, 1, -1, 0},
  s_powerClamp = {"POWER Clamp", CLAMP_SUPPLY, -1, 0, -1, 0},
  s_ecl = {nullptr, RANGE_SUPPLY, 0, 1, 0, 1},
  s_seriesCurrent = {"Series Current", RANGE_SUPPLY, -1, 1, 0, 1},
  s_seriesMosfet = {"Series MOSFET", RANGE_SUPPLY, 0, 1, 0, 1};

// One typical table over its own voltage.
class TypTable {
public:
    explicit TypTable(const Vitbl* table) : m_Table(table)
    {
        m_Built = table != nullptr && CURVE_Prepare(table, CORNER_TYP, 0, &curve) == CURVE_BUILT;
        if (m_Built) largest = CURVE_LargestCurrent(&curve, Low(), High(), nullptr);
    }
    ~TypTable() { CURVE_Free(&curve); }
    TypTable(const TypTable&) = delete;
    TypTable& operator=(const TypTable&) = delete;

    // A table without current says that there is nothing.
    bool Carries() const { return m_Built && largest >= NO_CURRENT; }
    double Low() const { return curve.points[0].v; }
    double High() const { return curve.points[curve.count - 1].v; }
    double At(double x) const { return m_Built ? CURVE_At(&curve, x, nullptr) : 0.0; }
    bool Covers(double x) const { return m_Built && x >= Low() && x <= High(); }
    const char* Name() const { return m_Table->name; }
    const Vitbl* Table() const { return m_Table; }

    Curve curve = {nullptr, 0, 0.0, 0.0};
    double largest = 0.0;

private:
    const Vitbl* m_Table;
    bool m_Built;
};

static void s_checkSpan(const Mdl* model, const TypTable* table, const Coverage* coverage,
                        double supply)
{
    if (!table->Carries() || !(supply > 0.0)) return;
    const PlaceScope at(table->Table());
    const double low = table->Low();
    const double high = table->High();
    const double slack = SPAN_TOLERANCE * supply;
    const auto covers = [&](double from, double to) {
        return low <= from * supply + slack && high >= to * supply - slack;
    };
    if (!covers(coverage->mustLow, coverage->mustHigh))
        ERRLOG_CautionNew(4706, model->name, s_typ, table->Name(), low, high,
                          coverage->mustLow * supply, coverage->mustHigh * supply);
    else if (!covers(coverage->fullLow, coverage->fullHigh))
        ERRLOG_NoteNew(4705, model->name, s_typ, table->Name(), low, high,
                       coverage->fullLow * supply, coverage->fullHigh * supply);
}

// The current of a drive table at its reference, where the pin is at its rail, and at the other
// rail, where the table must pull.
static void s_checkDrive(const Mdl* model, const TypTable* table, double supply, bool pulldown)
{
    if (!table->Carries()) return;
    const PlaceScope at(table->Table());
    const double atZero = table->At(0.0);
    const double most = CURVE_LargestCurrent(&table->curve, 0.0, supply, nullptr);
    if (table->Covers(0.0) && std::fabs(atZero) > std::max(ZERO_FLOOR, ZERO_SHARE * most)) {
        if (pulldown)
            ERRLOG_CautionNew(4707, model->name, s_typ, atZero);
        else
            ERRLOG_CautionNew(4708, model->name, s_typ, atZero);
    }
    const double atSupply = table->At(supply);
    if (!table->Covers(supply)) return;
    if (pulldown && !(atSupply > 0.0)) ERRLOG_CautionNew(4709, model->name, s_typ, atSupply);
    if (!pulldown && !(atSupply < 0.0)) ERRLOG_CautionNew(4710, model->name, s_typ, atSupply);
}

static void s_checkFlat(const Mdl* model, const TypTable* table)
{
    if (!table->Carries()) return;
    const PlaceScope at(table->Table());
    for (int k = 1; k < table->curve.count; ++k)
        if (table->curve.points[k].i != table->curve.points[0].i) return;
    ERRLOG_WarnNew(4721, model->name, s_typ, table->Name());
}

// The table's voltage where both begin: a drive table that still holds the clamp equals it there.
static bool s_contains(const TypTable* drive, const TypTable* clamp)
{
    if (!drive->Carries() || !clamp->Carries()) return false;
    const double x = std::max(drive->Low(), clamp->Low());
    const double a = drive->At(x);
    const double b = clamp->At(x);
    return x < 0.0 && drive->Covers(x) && clamp->Covers(x) && std::fabs(b) > CONTAINED_FLOOR &&
           std::fabs(a - b) <= CONTAINED_SHARE * std::fabs(b);
}

static void s_checkContained(const Mdl* model, ErrNumber<const char*, const char*> number,
                             const TypTable* drive, const TypTable* clamp)
{
    if (!s_contains(drive, clamp)) return;
    const PlaceScope at(drive->Table());
    ERRLOG_WarnNew(number, model->name, s_typ);
}

static void s_checkClamps(const Mdl* model, const CurveRails* rails, const TypTable* gnd,
                          const TypTable* power, const Curve* receive)
{
    if (gnd->Carries() && gnd->Low() < 0.0) {
        const PlaceScope at(gnd->Table());
        const double current = gnd->At(gnd->Low());
        if (current > WRONG_SIGN &&
            CURVE_At(receive, rails->gndClamp + gnd->Low(), nullptr) > WRONG_SIGN)
            ERRLOG_WarnNew(4711, model->name, s_typ, current);
    }
    if (power->Carries() && power->Low() < 0.0) {
        const PlaceScope at(power->Table());
        const double current = power->At(power->Low());
        if (current < -WRONG_SIGN &&
            CURVE_At(receive, rails->powerClamp - power->Low(), nullptr) < -WRONG_SIGN)
            ERRLOG_WarnNew(4712, model->name, s_typ, current);
    }
}

// Currents of the clamps between the rails, where their diodes are off.
static void s_checkTermination(const Mdl* model, const CurveRails* rails)
{
    Curve gnd;
    Curve power;
    CURVE_Prepare(model->gndClamp, CORNER_TYP, 1, &gnd);
    CURVE_Prepare(model->powerClamp, CORNER_TYP, 1, &power);
    const double span = rails->powerClamp - rails->gndClamp;
    int twins = 0;
    for (int quarter = 1; quarter <= 3; ++quarter) {
        const double x = span * quarter / 4.0;
        const double ofGnd = CURVE_At(&gnd, x, nullptr);
        const double ofPower = CURVE_At(&power, span - x, nullptr);
        const double larger = std::max(std::fabs(ofGnd), std::fabs(ofPower));
        twins += std::min(std::fabs(ofGnd), std::fabs(ofPower)) > TWIN_FLOOR &&
                 std::fabs(ofGnd - ofPower) <= TWIN_SHARE * larger;
        if (quarter == 2 && CURVE_TakesState(model, CURVE_OFF) &&
            std::fabs(ofGnd) + std::fabs(ofPower) > TERMINATION)
            ERRLOG_NoteNew(4714, model->name, s_typ, std::fabs(ofGnd) + std::fabs(ofPower));
    }
    if (twins == 3) ERRLOG_WarnNew(4715, model->name, s_typ);
    CURVE_Free(&gnd);
    CURVE_Free(&power);
}

static bool s_isDriver(const Mdl* model)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    return info != nullptr && info->drives;
}

// Unloaded, the high state must lie above the low one.
static void s_checkLift(const Mdl* model, const CurveSet* set, const CurveRails* rails)
{
    const CurveCase* low = &set->cases[CURVE_LOW][CORNER_TYP];
    const CurveCase* high = &set->cases[CURVE_HIGH][CORNER_TYP];
    AcdcPoint down;
    AcdcPoint up;
    if (!CURVE_IsPushPull(model) || model->pulldown == nullptr || model->pullup == nullptr ||
        low->result != CURVE_BUILT || high->result != CURVE_BUILT ||
        !ACDC_Solve(&low->held, HUGE_VAL, rails->pulldown, rails->pulldown, &down) ||
        !ACDC_Solve(&high->held, HUGE_VAL, rails->pullup, rails->pullup, &up))
        return;
    if (up.v <= down.v) ERRLOG_CautionNew(4719, model->name, s_typ, up.v, down.v);
}

static void s_checkSize(const Mdl* model, const CurveSet* set, const CurveRails* rails)
{
    for (const auto& state : set->cases) {
        const CurveCase* typ = &state[CORNER_TYP];
        double at = 0.0;
        if (typ->result == CURVE_BUILT &&
            CURVE_LargestCurrent(&typ->held, std::min(rails->pulldown, rails->pullup),
                                 std::max(rails->pulldown, rails->pullup), &at) > TOO_MUCH) {
            ERRLOG_CautionNew(4722, model->name, s_typ, at);
            return;
        }
    }
}

bool CURVE_MinIsStronger(const Vitbl* table, const CurveSupply* supply)
{
    double current[CORNER_COUNT] = {0.0, 0.0, 0.0};
    for (int corner = CORNER_MIN; corner <= CORNER_MAX; ++corner) {
        int outside = 0;
        if (!supply->known[corner] ||
            !CURVE_Eval(table, corner, supply->volts[corner] / 2.0, 0, &current[corner],
                        &outside) ||
            outside)
            return false;
    }
    return std::fabs(current[CORNER_MIN]) > STRONGER * std::fabs(current[CORNER_MAX]);
}

static void s_checkCorners(const Mdl* model, const CurveSet* set, int state, const Vitbl* table)
{
    const CurveSupply supply = CURVE_DriveSupply(model);
    if (table == nullptr || CURVE_MinIsStronger(table, &supply)) return;
    double current[CORNER_COUNT] = {0.0, 0.0, 0.0};
    for (int corner = CORNER_MIN; corner <= CORNER_MAX; ++corner) {
        const CurveCase* each = &set->cases[state][corner];
        CurveRails rails;
        if (each->result != CURVE_BUILT || !CURVE_Rails(model, corner, &rails)) return;
        current[corner] = CURVE_At(&each->held, (rails.pullup + rails.pulldown) / 2.0, nullptr);
    }
    const PlaceScope at(table);
    if (std::fabs(current[CORNER_MIN]) > STRONGER * std::fabs(current[CORNER_MAX]))
        ERRLOG_CautionNew(4720, model->name, state == CURVE_LOW ? "low" : "high",
                          current[CORNER_MAX], current[CORNER_MIN]);
}

static void s_checkSeries(const Mdl* model)
{
    double supply = 0.0;
    if (model->voltageRange == nullptr || model->voltageRange->typState != CELL_NUMBER) return;
    supply = model->voltageRange->typ;
    const PlaceScope at(CORNER_TYP);
    for (const SerEl* elements : model->series) {
        if (elements == nullptr) continue;
        const TypTable current(elements->current);
        s_checkSpan(model, &current, &s_seriesCurrent, supply);
        for (const Vitbl* mosfet = elements->mosfets; mosfet != nullptr; mosfet = mosfet->next) {
            const TypTable table(mosfet);
            s_checkSpan(model, &table, &s_seriesMosfet, supply);
        }
    }
}

static void s_checkSpans(const Mdl* model, const CurveRails* rails, const TypTable* pulldown,
                         const TypTable* pullup, const TypTable* gnd, const TypTable* power)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    const bool ecl = CURVE_IsEcl(model);
    const double drive = ecl ? ECL_SPAN : rails->pullup - rails->pulldown;
    const double clamp = rails->powerClamp - rails->gndClamp;
    if (info == nullptr || info->pulldown != MDL_ZERO)
        s_checkSpan(model, pulldown, ecl ? &s_ecl : &s_pulldown, drive);
    if (info == nullptr || info->pullup != MDL_ZERO)
        s_checkSpan(model, pullup, ecl ? &s_ecl : &s_pullup, drive);
    s_checkSpan(model, gnd, &s_gndClamp, clamp);
    s_checkSpan(model, power, &s_powerClamp, clamp);
}

static void s_checkTypical(const Mdl* model, const CurveSet* set, const CurveRails& rails)
{
    const PlaceScope at(CORNER_TYP);
    const TypTable pulldown(model->pulldown);
    const TypTable pullup(model->pullup);
    const TypTable gnd(model->gndClamp);
    const TypTable power(model->powerClamp);
    s_checkSpans(model, &rails, &pulldown, &pullup, &gnd, &power);
    for (const TypTable* table : {&pulldown, &pullup, &gnd, &power})
        s_checkFlat(model, table);
    if (!CURVE_IsEcl(model)) {
        s_checkDrive(model, &pulldown, rails.pullup - rails.pulldown, true);
        s_checkDrive(model, &pullup, rails.pullup - rails.pulldown, false);
    }
    s_checkClamps(model, &rails, &gnd, &power, &set->cases[CURVE_OFF][CORNER_TYP].held);
    s_checkTermination(model, &rails);
    s_checkContained(model, 4716, &pulldown, &gnd);
    s_checkContained(model, 4717, &pullup, &power);
    s_checkSize(model, set, &rails);
    if (s_isDriver(model)) s_checkLift(model, set, &rails);
}

void CURVE_CheckTables(const Mdl* model, const CurveSet* set)
{
    s_checkSeries(model);
    CurveRails rails;
    if (!CURVE_Rails(model, CORNER_TYP, &rails)) return;
    s_checkTypical(model, set, rails);
    if (!s_isDriver(model)) return;
    s_checkCorners(model, set, CURVE_LOW, model->pulldown);
    s_checkCorners(model, set, CURVE_HIGH, model->pullup);
}

int CURVE_Check(const Mdl* model)
{
    const CurveSubMdls submodels(CURVE_StoredSubMdls());
    const CurveSet set(model, &submodels);
    CurveFalls falls;
    CURVE_CheckShape(model, &set, &falls, true);
    CURVE_CheckTables(model, &set);
    return 1;
}
