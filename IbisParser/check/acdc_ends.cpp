// Waveform ends against the operating points of the tables, and against each other.
#include <algorithm>
#include <cmath>

#include "IbisParser/base/corner.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/acdc.h"
#include "IbisParser/check/waveforms.h"
#include "IbisParser/cmn.h"
#include "IbisParser/read/model/table.h"
#include "IbisParser/read/model/wvfrm.h"

// clang-format off
const AcdcNumbers acdcModelNumbers = {
    2406, 2407, 2408, 2409, 2418, {{{2411, 2410}, {2413, 2412}}, {{2415, 2414}, {2417, 2416}}}};
const AcdcNumbers acdcSubMdlNumbers = {
    2440, 2441, 2442, 2443, 2444, {{{2431, 2430}, {2433, 2432}}, {{2435, 2434}, {2437, 2436}}}};
// clang-format on

enum Edge { RISING, FALLING };

static const char* const s_stateNames[ACDC_DRIVEN] = {"low", "high"};

// The state at the start (0) and end (1) of an edge.
static int s_stateAt(int edge, int end)
{
    return (edge == RISING) == (end == 1) ? CURVE_HIGH : CURVE_LOW;
}

struct Fixture {
    double r;      // R_fixture
    double total;  // with R_dut
    double vf;
};

static bool s_fixture(const Wvfrm* waveform, int corner, Fixture* out)
{
    if (waveform->R_fixture.state != CELL_NUMBER ||
        WVFRM_FixtureVoltage(waveform, corner, &out->vf) != CELL_NUMBER)
        return false;
    out->r = waveform->R_fixture.value;
    out->total = out->r + (waveform->R_dut.state == CELL_NUMBER ? waveform->R_dut.value : 0.0);
    return true;
}

int ACDC_SolveState(const CurveCase* state, double r, double vf, double near, AcdcPoint* out)
{
    AcdcPoint held;
    const int found = ACDC_Solve(&state->free, r, vf, near, out);
    // Both curves are one until a clamp table ends.
    if (found && CURVE_At(&state->free, out->v, nullptr) == CURVE_At(&state->held, out->v, nullptr))
        return found;
    if (!ACDC_Solve(&state->held, r, vf, near, &held)) return found;
    if (!found || std::fabs(held.v - near) < std::fabs(out->v - near)) *out = held;
    return 1;
}

// What was said of a corner already.
struct Said {
    bool several[ACDC_DRIVEN];
    bool none[ACDC_DRIVEN];
    bool outside[ACDC_DRIVEN];
};

// The level that the tables give for one end of a waveform, as seen at the fixture.
static bool s_level(const AcdcBuffer* buffer, const AcdcCorner* corner, const Fixture* fixture,
                    int state, double end, Said* said, double* level)
{
    const double near = fixture->vf + (end - fixture->vf) * fixture->total / fixture->r;
    const char* name = CORNER_Short(corner->corner);
    AcdcPoint point;
    if (!ACDC_SolveState(corner->state[state], fixture->total, fixture->vf, near, &point)) {
        if (said != nullptr && !said->none[state])
            ERRLOG_WarnNew(buffer->numbers->none, buffer->name, name, s_stateNames[state],
                           fixture->r, fixture->vf);
        if (said != nullptr) said->none[state] = true;
        return false;
    }
    if (said != nullptr && point.count > 1 && !said->several[state]) {
        ERRLOG_WarnNew(buffer->numbers->several, buffer->name, name, s_stateNames[state]);
        said->several[state] = true;
    }
    if (said != nullptr && point.outside && !said->outside[state]) {
        ERRLOG_CautionNew(buffer->numbers->outside, buffer->name, name, s_stateNames[state],
                          point.v);
        said->outside[state] = true;
    }
    *level = fixture->vf + (point.v - fixture->vf) * fixture->r / fixture->total;
    return true;
}

// Both ends of a waveform and what the tables give for them.
struct Ends {
    double wave[2];
    double table[2];
    bool known[2];
};

static bool s_ends(const AcdcBuffer* buffer, const AcdcCorner* corner, const Wvfrm* waveform,
                   int edge, const Fixture* fixture, Said* said, Ends* out)
{
    for (int end = 0; end < 2; ++end) {
        if (!WVFRM_EndPoint(waveform, corner->corner, end, &out->wave[end])) return false;
        const int state = s_stateAt(edge, end);
        out->known[end] =
            s_level(buffer, corner, fixture, state, out->wave[end], said, &out->table[end]);
    }
    return true;
}

static void s_compare(const AcdcBuffer* buffer, const AcdcCorner* corner, int edge,
                      const Fixture* fixture, const Ends* ends, double swing)
{
    for (int end = 0; end < 2; ++end) {
        if (!corner->driven[s_stateAt(edge, end)]) continue;
        const double share = std::fabs(ends->wave[end] - ends->table[end]) / swing;
        const auto* numbers = buffer->numbers->end[edge][end];
        const char* name = CORNER_Short(corner->corner);
        if (share > ACDC_ERR)
            ERRLOG_ErrorNew(numbers[1], buffer->name, name, fixture->r, fixture->vf,
                            ends->wave[end], ends->table[end]);
        else if (share > ACDC_WARN)
            ERRLOG_WarnNew(numbers[0], buffer->name, name, fixture->r, fixture->vf, ends->wave[end],
                           ends->table[end]);
    }
}

static void s_checkWaveform(const AcdcBuffer* buffer, const AcdcCorner* corner,
                            const Wvfrm* waveform, int edge, Said* said)
{
    const PlaceScope at(waveform);
    Fixture fixture;
    Ends ends;
    if (!s_fixture(waveform, corner->corner, &fixture) ||
        !s_ends(buffer, corner, waveform, edge, &fixture, said, &ends) || !ends.known[0] ||
        !ends.known[1])
        return;
    const double swing = std::fabs(ends.table[1] - ends.table[0]);
    if (swing >= ACDC_MIN_SWING)
        s_compare(buffer, corner, edge, &fixture, &ends, swing);
    else if (!WVFRM_FixtureHidesEdge(waveform, buffer->model, corner->corner))
        ERRLOG_WarnNew(buffer->numbers->noSwing, buffer->name, CORNER_Short(corner->corner),
                       fixture.r, fixture.vf);
}

// The level that one edge ends at is the one that the other begins at.
static void s_compareEdges(const AcdcBuffer* buffer, const AcdcCorner* corner, const Wvfrm* rising,
                           const Wvfrm* falling)
{
    const PlaceScope at(rising);
    Fixture fixture;
    Ends up;
    Ends down;
    if (!s_fixture(rising, corner->corner, &fixture) ||
        !s_ends(buffer, corner, rising, RISING, &fixture, nullptr, &up) ||
        !s_ends(buffer, corner, falling, FALLING, &fixture, nullptr, &down) || !up.known[0] ||
        !up.known[1])
        return;
    const double swing = std::fabs(up.table[1] - up.table[0]);
    if (swing < ACDC_MIN_SWING) return;
    for (int state = CURVE_HIGH; state >= CURVE_LOW; --state) {
        const double a = up.wave[state == CURVE_HIGH];
        const double b = down.wave[state == CURVE_LOW];
        if (std::fabs(a - b) > ACDC_WARN * swing)
            ERRLOG_WarnNew(buffer->numbers->disagree, buffer->name, CORNER_Short(corner->corner),
                           fixture.r, fixture.vf, s_stateNames[state], a, b);
    }
}

void ACDC_CheckEnds(const AcdcBuffer* buffer, const AcdcCorner* corner)
{
    Said said = {};
    // More waveforms than a model may have are told of; each would walk the tables once more.
    for (int edge = RISING; edge <= FALLING; ++edge) {
        int checked = 0;
        for (const Wvfrm* waveform = buffer->list[edge];
             waveform != nullptr && checked < WVFRM_MAX_PER_OWNER; waveform = waveform->next) {
            s_checkWaveform(buffer, corner, waveform, edge, &said);
            ++checked;
        }
    }
    int pairs = 0;
    for (const Wvfrm* rising = buffer->list[RISING];
         rising != nullptr && pairs < WVFRM_MAX_PER_OWNER; rising = rising->next) {
        ++pairs;
        const Wvfrm* falling = WVFRM_FindFixture(buffer->list[FALLING], rising);
        if (falling != nullptr) s_compareEdges(buffer, corner, rising, falling);
    }
}

int ACDC_EndPoint(const Mdl* model, const Wvfrm* waveform, int corner, int last, double* volts)
{
    const int direction = WVFRM_Direction(waveform->kind);
    Fixture fixture;
    double end = 0.0;
    if (direction == 0 || !s_fixture(waveform, corner, &fixture) ||
        !WVFRM_EndPoint(waveform, corner, last, &end))
        return 0;
    const int state = s_stateAt(direction > 0 ? RISING : FALLING, last != 0);
    const CurveSubMdls submodels(CURVE_StoredSubMdls());
    CurveCase curves;
    curves.result = CURVE_CombineWith(model, &submodels, state, corner, 0, &curves.free);
    int found = 0;
    if (curves.result == CURVE_BUILT || curves.result == CURVE_NO_TABLE) {
        CURVE_CombineWith(model, &submodels, state, corner, 1, &curves.held);
        const AcdcBuffer buffer = {nullptr, nullptr, {nullptr, nullptr}, model};
        AcdcCorner only = {corner, {nullptr, nullptr}, {true, true}};
        only.state[state] = &curves;
        found = s_level(&buffer, &only, &fixture, state, end, nullptr, volts);
    }
    CURVE_Free(&curves.free);
    CURVE_Free(&curves.held);
    return found;
}
