// V-T tables: fixtures, lines and the rules of their structure.
#include "IbisParser/wvfrm.h"

#include <cstring>

#include "IbisParser/base/corner.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/base/rngp.h"
#include "IbisParser/cmn.h"
#include "IbisParser/krng.h"
#include "IbisParser/parse.h"
#include "IbisParser/read/model/table.h"
#include "IbisParser/read/model/wvfrm.h"
#include "IbisParser/store/section.h"
#include "IbisParser/vitbl.h"

static const char s_Module[] = "IbisParser/wvfrm";

enum ParameterRule { ANY, POSITIVE, NOT_NEGATIVE };

static const struct Parameter {
    const char* name;
    RngSingle Wvfrm::*slot;
    ParameterRule rule;
} s_parameters[] = {
    {"R_fixture", &Wvfrm::R_fixture, POSITIVE},     {"V_fixture", &Wvfrm::V_fixture, ANY},
    {"V_fixture_min", &Wvfrm::V_fixture_min, ANY},  {"V_fixture_max", &Wvfrm::V_fixture_max, ANY},
    {"C_fixture", &Wvfrm::C_fixture, NOT_NEGATIVE}, {"L_fixture", &Wvfrm::L_fixture, NOT_NEGATIVE},
    {"R_dut", &Wvfrm::R_dut, NOT_NEGATIVE},         {"L_dut", &Wvfrm::L_dut, NOT_NEGATIVE},
    {"C_dut", &Wvfrm::C_dut, NOT_NEGATIVE},
};

// What a keyword code stands for.
static const struct Kind {
    int code;
    int direction;
    bool hasFixture;
} s_kinds[] = {
    {KEY_RISING_WAVEFORM, 1, true},
    {KEY_FALLING_WAVEFORM, -1, true},
    {KEY_GND_PULSE_TABLE, 0, false},
    {KEY_POWER_PULSE_TABLE, 0, false},
    {KEY_SUBMDL_RISING_WAVEFORM, 1, true},
    {KEY_SUBMDL_FALLING_WAVEFORM, -1, true},
    {KEY_RISING_WAVEFORM_NEAR, 1, false},
    {KEY_RISING_WAVEFORM_FAR, 1, false},
    {KEY_FALLING_WAVEFORM_NEAR, -1, false},
    {KEY_FALLING_WAVEFORM_FAR, -1, false},
    {KEY_DIFF_RISING_WAVEFORM_NEAR, 1, false},
    {KEY_DIFF_RISING_WAVEFORM_FAR, 1, false},
    {KEY_DIFF_FALLING_WAVEFORM_NEAR, -1, false},
    {KEY_DIFF_FALLING_WAVEFORM_FAR, -1, false},
};

static const Kind* s_kind(int code)
{
    for (const Kind& kind : s_kinds)
        if (kind.code == code) return &kind;
    CMN_AssertFailed(s_Module, __LINE__);
}

static int s_maxPoints()
{
    return static_cast<int>(SEC_Limit(LIMIT_WAVE_POINTS));
}

int WVFRM_Direction(int code)
{
    return s_kind(code)->direction;
}

int WVFRM_New(Wvfrm** list, int code, const char* owner, Wvfrm** out)
{
    CMN_ASSERT(list != nullptr && owner != nullptr && out != nullptr);
    const Kind* kind = s_kind(code);
    *out = nullptr;
    Wvfrm* waveform = static_cast<Wvfrm*>(SEC_NewPart(1801, s_Module, __LINE__, sizeof(Wvfrm)));
    if (waveform == nullptr) return 0;
    waveform->reading = SEC_NewPart(1801, s_Module, __LINE__, sizeof(RngpList));
    if (waveform->reading == nullptr) {
        SEC_FreeRecord(waveform);
        return 0;
    }
    waveform->kind = code;
    waveform->owner = owner;
    waveform->line = PARSE_GetLineNum();
    if (*list == nullptr) {
        *list = waveform;
    } else {
        if (!kind->hasFixture) ERRLOG_LineErrorNew(1836, SEC_KeywordName(code), owner);
        (*list)->last->next = waveform;
    }
    waveform->first = *list;
    (*list)->last = waveform;
    *out = waveform;
    return 1;
}

static void s_setParameter(Wvfrm* waveform, const Parameter* parameter, const CmnArgs* args)
{
    const char* keyword = SEC_KeywordName(waveform->kind);
    RngSingle* slot = &(waveform->*parameter->slot);
    if (slot->state != CELL_ABSENT) {
        ERRLOG_LineErrorNew(1803, keyword, parameter->name);
        return;
    }
    if (!KRNG_SetSingle(slot, args, parameter->name)) {
        slot->state = CELL_NA;
        return;
    }
    if (args->argc > 2) ERRLOG_LineErrorNew(1820, args->argv[2], keyword);
    if (parameter->rule == POSITIVE && slot->value <= 0.0) {
        ERRLOG_LineErrorNew(1807, keyword, waveform->owner);
        slot->state = CELL_NA;
    }
    if (parameter->rule == NOT_NEGATIVE && slot->value < 0.0) {
        ERRLOG_LineErrorNew(1808, keyword, waveform->owner, parameter->name);
        slot->state = CELL_NA;
    }
}

// A line that does not begin with a table cell.
static void s_receiveParameter(Wvfrm* waveform, const char* line)
{
    const char* keyword = SEC_KeywordName(waveform->kind);
    SecArgs args;
    if (!KRNG_Split(line, 3, &args)) {
        ERRLOG_LineBugNew(1800, keyword, s_Module, __LINE__);
        return;
    }
    const char* name = args.argc > 0 ? args.argv[0] : "";
    const Parameter* parameter = SEC_FindRow(s_parameters, name);
    if (parameter == nullptr && std::strchr(line, '=') == nullptr) {
        ERRLOG_LineErrorNew(1820, TABLE_FirstItem(line).text, keyword);
    } else if (!s_kind(waveform->kind)->hasFixture) {
        ERRLOG_LineErrorNew(1835, keyword);
    } else if (parameter == nullptr) {
        ERRLOG_LineErrorNew(1802, keyword, name);
    } else if (waveform->count > 0) {
        ERRLOG_LineErrorNew(1804, parameter->name, keyword);
    } else {
        s_setParameter(waveform, parameter, &args);
    }
}

static void s_checkTime(const Wvfrm* waveform, const RngpLine* previous, double time)
{
    const char* keyword = SEC_KeywordName(waveform->kind);
    if (time < 0.0) ERRLOG_LineErrorNew(1815, keyword, time);
    if (previous == nullptr) {
        if (time > 0.0) ERRLOG_LineNoteNew(1814, keyword, waveform->owner);
    } else if (time < previous->x) {
        ERRLOG_LineErrorNew(1813, keyword, time, previous->x);
    }
}

static void s_receiveCells(Wvfrm* waveform, const char* text)
{
    const char* keyword = SEC_KeywordName(waveform->kind);
    RngpLine* line = nullptr;
    if (!RNGP_ParseLine(text, keyword, "Time", &line)) return;
    KRNG_CleanLine(line, text, keyword);
    if (line->xState != CELL_NUMBER) {
        ERRLOG_LineErrorNew(1812, keyword);
        RNGP_FreeList(line);
        return;
    }
    RngpList* list = static_cast<RngpList*>(waveform->reading);
    s_checkTime(waveform, list->tail, line->x);
    // Lines beyond the limit are an error of their own, and each could repeat all lines before it.
    waveform->count = RNGP_Append(list, line, list->count < s_maxPoints());
    waveform->head = list->head;
}

int WVFRM_ReceiveLine(Wvfrm* waveform, const char* line)
{
    CMN_ASSERT(line != nullptr);
    if (waveform == nullptr) return 1;
    CMN_ASSERT(waveform->reading != nullptr);
    if (TABLE_BeginsWithCell(line))
        s_receiveCells(waveform, line);
    else
        s_receiveParameter(waveform, line);
    return 1;
}

static bool s_sameValue(const RngSingle& a, const RngSingle& b)
{
    return a.state == b.state && (a.state != CELL_NUMBER || a.value == b.value);
}

static bool s_sameFixture(const Wvfrm* a, const Wvfrm* b)
{
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        RngSingle va = {0.0, CELL_ABSENT};
        RngSingle vb = {0.0, CELL_ABSENT};
        va.state = WVFRM_FixtureVoltage(a, corner, &va.value);
        vb.state = WVFRM_FixtureVoltage(b, corner, &vb.value);
        if (!s_sameValue(va, vb)) return false;
    }
    for (const Parameter& parameter : s_parameters) {
        const bool voltage = parameter.slot == &Wvfrm::V_fixture ||
                             parameter.slot == &Wvfrm::V_fixture_min ||
                             parameter.slot == &Wvfrm::V_fixture_max;
        if (!voltage && !s_sameValue(a->*parameter.slot, b->*parameter.slot)) return false;
    }
    return true;
}

const Wvfrm* WVFRM_FindFixture(const Wvfrm* list, const Wvfrm* like)
{
    int compared = 0;
    for (; list != nullptr && compared < WVFRM_MAX_PER_OWNER; list = list->next) {
        ++compared;
        if (s_sameFixture(list, like)) return list;
    }
    return nullptr;
}

static void s_checkFixture(const Wvfrm* waveform)
{
    const char* keyword = SEC_KeywordName(waveform->kind);
    const char* owner = waveform->owner;
    if (waveform->R_fixture.state == CELL_ABSENT) ERRLOG_LineErrorNew(1805, keyword, owner);
    if (waveform->V_fixture.state == CELL_ABSENT) ERRLOG_LineErrorNew(1806, keyword, owner);
    if ((waveform->V_fixture_min.state == CELL_ABSENT) !=
        (waveform->V_fixture_max.state == CELL_ABSENT))
        ERRLOG_LineWarnNew(1809, keyword, owner);
    if (waveform->R_fixture.state != CELL_NUMBER || waveform->V_fixture.state != CELL_NUMBER)
        return;
    const Wvfrm* same = WVFRM_FindFixture(waveform->first, waveform);
    if (same != nullptr && same != waveform) ERRLOG_LineWarnNew(1819, keyword, owner);
}

static void s_checkPoints(const Wvfrm* waveform, const RngpLine* tail)
{
    const char* keyword = SEC_KeywordName(waveform->kind);
    const char* owner = waveform->owner;
    if (waveform->count < TABLE_MIN_POINTS) {
        ERRLOG_LineErrorNew(1810, keyword, owner, waveform->count);
        return;
    }
    if (waveform->count > s_maxPoints())
        ERRLOG_LineErrorNew(1811, keyword, owner, waveform->count, s_maxPoints());
    if (waveform->head->typState == CELL_NA || tail->typState == CELL_NA)
        ERRLOG_LineErrorNew(1816, keyword, owner);
    for (int corner = CORNER_MIN; corner <= CORNER_MAX; ++corner) {
        if (TABLE_EndIsNA(waveform->head, tail, corner))
            ERRLOG_LineErrorNew(1817, keyword, owner, CORNER_Name(corner));
    }
}

int WVFRM_Fini(Wvfrm* waveform)
{
    if (waveform == nullptr || waveform->reading == nullptr) return 1;
    if (s_kind(waveform->kind)->hasFixture) s_checkFixture(waveform);
    s_checkPoints(waveform, static_cast<const RngpList*>(waveform->reading)->tail);
    TABLE_EndReading(&waveform->reading);
    return 1;
}

void WVFRM_FreeList(Wvfrm* list)
{
    SEC_FreeList(list, [](Wvfrm* waveform) {
        TABLE_EndReading(&waveform->reading);
        TABLE_EndReading(&waveform->compositeReading);
        RNGP_FreeList(waveform->head);
        RNGP_FreeList(waveform->composite);
        SEC_FreeRecord(waveform);
    });
}

int WVFRM_FixtureVoltage(const Wvfrm* waveform, int corner, double* volts)
{
    CMN_ASSERT(waveform != nullptr && volts != nullptr);
    const RngSingle* voltage = &waveform->V_fixture;
    if (corner == CORNER_MIN && waveform->V_fixture_min.state == CELL_NUMBER)
        voltage = &waveform->V_fixture_min;
    if (corner == CORNER_MAX && waveform->V_fixture_max.state == CELL_NUMBER)
        voltage = &waveform->V_fixture_max;
    *volts = voltage->value;
    return voltage->state;
}

int WVFRM_EndPoint(const Wvfrm* waveform, int corner, int last, double* volts)
{
    CMN_ASSERT(waveform != nullptr && volts != nullptr);
    int found = 0;
    for (const RngpLine* line = waveform->head; line != nullptr; line = line->next) {
        double value = 0.0;
        if (VITBL_Cell(line, corner, &value) != CELL_NUMBER) continue;
        *volts = value;
        found = 1;
        if (!last) break;
    }
    return found;
}

// The time at which the corner first reaches the voltage in its direction; 1 stored.
static int s_crossing(const Wvfrm* waveform, int corner, double level, double direction,
                      double* seconds)
{
    double time = 0.0;
    double voltage = 0.0;
    int points = 0;
    for (const RngpLine* line = waveform->head; line != nullptr; line = line->next) {
        double next = 0.0;
        if (VITBL_Cell(line, corner, &next) != CELL_NUMBER) continue;
        if (direction * (next - level) >= 0.0) {
            const double share = points == 0 ? 1.0 : (level - voltage) / (next - voltage);
            *seconds = points == 0 ? line->x : time + share * (line->x - time);
            return 1;
        }
        time = line->x;
        voltage = next;
        ++points;
    }
    return 0;
}

int WVFRM_EdgeTime(const Wvfrm* waveform, int corner, double* seconds)
{
    CMN_ASSERT(waveform != nullptr && seconds != nullptr);
    double first = 0.0;
    double last = 0.0;
    if (!WVFRM_EndPoint(waveform, corner, 0, &first) || !WVFRM_EndPoint(waveform, corner, 1, &last))
        return 0;
    const double swing = last - first;
    if (swing == 0.0) return 0;
    const double direction = swing > 0.0 ? 1.0 : -1.0;
    double from = 0.0;
    double to = 0.0;
    if (!s_crossing(waveform, corner, first + 0.2 * swing, direction, &from) ||
        !s_crossing(waveform, corner, first + 0.8 * swing, direction, &to) || to <= from)
        return 0;
    *seconds = to - from;
    return 1;
}
