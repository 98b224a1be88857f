// Shape rules of V-T tables, and the rules between those of one owner.
#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "IbisParser/base/corner.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/curve.h"
#include "IbisParser/check/waveforms.h"
#include "IbisParser/cmn.h"
#include "IbisParser/mdl.h"
#include "IbisParser/read/model/table.h"
#include "IbisParser/read/model/wvfrm.h"
#include "IbisParser/submdl.h"
#include "IbisParser/vitbl.h"

#define LARGE_VOLTAGE 100.0   // volt
#define LONG_TIME 1e-3        // second
#define NO_SWING 1e-3         // volt
#define SETTLED_SPAN 0.10     // last share of the time span
#define SETTLED_SHARE 0.05    // of the swing
#define LEAD_IN_SHARE 0.05    // of the swing, reached in the first half of the span
#define OVERSHOOT_SHARE 0.50  // of the swing
#define CORNER_SPEED 1.25     // edge time of the maximum over that of the minimum corner
#define SAME_VOLTAGE 1e-6     // volt and relative

// What is raised once for a model.
struct Said {
    bool leadIn, resolution, speed;
    bool corner[CORNER_COUNT];
};

// One corner of a waveform.
struct Edge {
    double first, last;  // volt
    double firstTime, lastTime;
    double lowest, highest;
    int numbers;
};

static bool s_sameVoltage(double a, double b)
{
    return std::fabs(a - b) <=
           std::max(SAME_VOLTAGE, SAME_VOLTAGE * std::max(std::fabs(a), std::fabs(b)));
}

// Calls visit(time, voltage) for every numeric cell of the corner.
template <typename Visit>
static void s_forEach(const Wvfrm* waveform, int corner, Visit visit)
{
    for (const RngpLine* line = waveform->head; line != nullptr; line = line->next) {
        double voltage = 0.0;
        if (VITBL_Cell(line, corner, &voltage) == CELL_NUMBER) visit(line->x, voltage);
    }
}

static Edge s_edge(const Wvfrm* waveform, int corner)
{
    Edge edge = {};
    s_forEach(waveform, corner, [&](double time, double voltage) {
        if (edge.numbers == 0) edge = {voltage, voltage, time, time, voltage, voltage, 0};
        edge.last = voltage;
        edge.lastTime = time;
        edge.lowest = std::min(edge.lowest, voltage);
        edge.highest = std::max(edge.highest, voltage);
        ++edge.numbers;
    });
    return edge;
}

bool WVFRM_FixtureHidesEdge(const Wvfrm* waveform, const Mdl* model, int corner)
{
    const MdlTypeInfo* info = model != nullptr ? MDL_TypeInfo(model->type) : nullptr;
    double level = 0.0;
    double fixture = 0.0;
    if (info == nullptr || WVFRM_FixtureVoltage(waveform, corner, &fixture) != CELL_NUMBER)
        return false;
    if (info->pullup == MDL_ZERO)
        return MDL_RefVoltage(model, MDL_REF_PULLDOWN, corner, &level) &&
               s_sameVoltage(level, fixture);
    if (info->pulldown == MDL_ZERO)
        return MDL_RefVoltage(model, MDL_REF_PULLUP, corner, &level) &&
               s_sameVoltage(level, fixture);
    return false;
}

// The largest distance from the last voltage within the last share of the span.
static double s_unsettled(const Wvfrm* waveform, int corner, const Edge* edge)
{
    const double from = edge->lastTime - SETTLED_SPAN * (edge->lastTime - edge->firstTime);
    double worst = 0.0;
    double time = edge->firstTime;
    double before = edge->first;
    s_forEach(waveform, corner, [&](double next, double voltage) {
        if (next >= from) {
            worst = std::max(worst, std::fabs(voltage - edge->last));
            if (time < from) {
                const double at = before + (voltage - before) * ((from - time) / (next - time));
                worst = std::max(worst, std::fabs(at - edge->last));
            }
        }
        time = next;
        before = voltage;
    });
    return worst;
}

// The corner that is worst by a measure, with the measure; none when no corner has a swing.
template <typename Measure>
static int s_worstCorner(const Edge* edges, Measure measure, double* worst)
{
    int found = CORNER_COUNT;
    *worst = 0.0;
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const double swing = std::fabs(edges[corner].last - edges[corner].first);
        if (edges[corner].numbers < 2 || swing < NO_SWING) continue;
        const double value = measure(corner, &edges[corner], swing);
        if (found == CORNER_COUNT || value > *worst) {
            found = corner;
            *worst = value;
        }
    }
    return found;
}

static void s_checkDirection(const Wvfrm* waveform, const Mdl* model, const Edge* edges)
{
    const char* keyword = SEC_KeywordName(waveform->kind);
    const int direction = WVFRM_Direction(waveform->kind);
    bool hidden = false;
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const Edge* edge = &edges[corner];
        const PlaceScope at(corner);
        const char* column = CORNER_Name(corner);
        if (edge->numbers < 2) continue;
        if (std::fabs(edge->last - edge->first) < NO_SWING) {
            if (!WVFRM_FixtureHidesEdge(waveform, model, corner))
                ERRLOG_WarnNew(1824, keyword, waveform->owner, column);
            else if (!hidden)
                ERRLOG_NoteNew(1825, keyword, waveform->owner);
            hidden = hidden || WVFRM_FixtureHidesEdge(waveform, model, corner);
        } else if (direction > 0 && edge->last < edge->first) {
            ERRLOG_WarnNew(1821, keyword, waveform->owner, column, edge->last, edge->first);
        } else if (direction < 0 && edge->last > edge->first) {
            ERRLOG_WarnNew(1822, keyword, waveform->owner, column, edge->last, edge->first);
        }
    }
}

static void s_checkSettled(const Wvfrm* waveform, const Edge* edges)
{
    double worst = 0.0;
    const int corner = s_worstCorner(
        edges,
        [&](int each, const Edge* edge, double swing) {
            return s_unsettled(waveform, each, edge) / swing;
        },
        &worst);
    if (corner == CORNER_COUNT) return;
    const PlaceScope at(corner);
    if (worst >= SETTLED_SHARE)
        ERRLOG_WarnNew(1826, SEC_KeywordName(waveform->kind), waveform->owner, CORNER_Name(corner),
                       "end");
}

static void s_checkOvershoot(const Wvfrm* waveform, const Edge* edges)
{
    double worst = 0.0;
    const int corner = s_worstCorner(
        edges,
        [](int, const Edge* edge, double swing) {
            const double above = edge->highest - std::max(edge->first, edge->last);
            const double below = std::min(edge->first, edge->last) - edge->lowest;
            return std::max(above, below) / swing;
        },
        &worst);
    if (corner == CORNER_COUNT) return;
    const PlaceScope at(corner);
    if (worst > OVERSHOOT_SHARE)
        ERRLOG_CautionNew(1832, SEC_KeywordName(waveform->kind), waveform->owner,
                          CORNER_Name(corner), 100.0 * worst);
}

static void s_checkValues(const Wvfrm* waveform, const Edge* edges)
{
    const char* keyword = SEC_KeywordName(waveform->kind);
    double lastTime = 0.0;
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const Edge* edge = &edges[corner];
        if (edge->numbers == 0) continue;
        const PlaceScope at(corner);
        const double largest =
            std::fabs(edge->highest) >= std::fabs(edge->lowest) ? edge->highest : edge->lowest;
        if (std::fabs(largest) > LARGE_VOLTAGE)
            ERRLOG_WarnNew(1823, keyword, waveform->owner, CORNER_Name(corner), largest);
        lastTime = std::max(lastTime, edge->lastTime);
    }
    if (lastTime > LONG_TIME) ERRLOG_CautionNew(1840, keyword, waveform->owner, lastTime);
}

static bool s_isUsed(const RngSingle* value)
{
    return value->state == CELL_NUMBER && value->value != 0.0;
}

static void s_checkFixture(const Wvfrm* waveform)
{
    const char* keyword = SEC_KeywordName(waveform->kind);
    if (s_isUsed(&waveform->C_fixture) || s_isUsed(&waveform->L_fixture))
        ERRLOG_NoteNew(1827, keyword, waveform->owner);
    if (s_isUsed(&waveform->R_dut) || s_isUsed(&waveform->L_dut) || s_isUsed(&waveform->C_dut))
        ERRLOG_WarnNew(1828, keyword, waveform->owner);
}

// The typical edge: when it begins, and how many points show it.
static void s_checkTypical(const Wvfrm* waveform, const Edge* typ, Said* said)
{
    const char* keyword = SEC_KeywordName(waveform->kind);
    const double swing = typ->last - typ->first;
    if (typ->numbers < 2 || std::fabs(swing) < NO_SWING) return;
    const PlaceScope at(CORNER_TYP);
    double start = typ->firstTime;
    double timeBefore = typ->firstTime;
    double shareBefore = 0.0;
    bool begun = false;
    int points = 0;
    s_forEach(waveform, CORNER_TYP, [&](double time, double voltage) {
        const double share = (voltage - typ->first) / swing;
        if (!begun && share >= LEAD_IN_SHARE) {
            start = timeBefore +
                    (time - timeBefore) * (LEAD_IN_SHARE - shareBefore) / (share - shareBefore);
            begun = true;
        }
        timeBefore = time;
        shareBefore = share;
        points += share >= 0.2 && share <= 0.8;
    });
    if (!said->leadIn && start > (typ->firstTime + typ->lastTime) / 2.0) {
        ERRLOG_NoteNew(1829, keyword, waveform->owner, "time span", typ->lastTime - typ->firstTime);
        said->leadIn = true;
    }
    if (!said->resolution && points < 1) {
        ERRLOG_CautionNew(1831, keyword, waveform->owner, 1);
        said->resolution = true;
    }
}

static void s_checkSpeed(const Wvfrm* waveform, Said* said)
{
    double slow = 0.0;
    double fast = 0.0;
    if (said->speed || !WVFRM_EdgeTime(waveform, CORNER_MIN, &slow) ||
        !WVFRM_EdgeTime(waveform, CORNER_MAX, &fast) || fast <= CORNER_SPEED * slow)
        return;
    ERRLOG_NoteNew(1833, SEC_KeywordName(waveform->kind), waveform->owner);
    said->speed = true;
}

static void s_checkPulse(const Wvfrm* waveform, const Edge* edges)
{
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const PlaceScope at(corner);
        if (edges[corner].numbers > 1 && !s_sameVoltage(edges[corner].first, edges[corner].last)) {
            ERRLOG_WarnNew(1834, SEC_KeywordName(waveform->kind), waveform->owner);
            return;
        }
    }
}

static void s_edges(const Wvfrm* waveform, Edge* edges)
{
    for (int corner = 0; corner < CORNER_COUNT; ++corner)
        edges[corner] = s_edge(waveform, corner);
}

void WVFRM_Check(const Wvfrm* waveform)
{
    if (waveform == nullptr) return;
    const PlaceScope at(waveform);
    Edge edges[CORNER_COUNT];
    s_edges(waveform, edges);
    s_checkValues(waveform, edges);
    if (WVFRM_Direction(waveform->kind) == 0) {
        s_checkPulse(waveform, edges);
        return;
    }
    s_checkDirection(waveform, nullptr, edges);
    s_checkSettled(waveform, edges);
}

// A waveform into a fixture. hasCorner tells what tables and waveforms of its owner have.
static void s_checkEdge(const Wvfrm* waveform, const Mdl* model, const bool* hasCorner, Said* said)
{
    const PlaceScope at(waveform);
    Edge edges[CORNER_COUNT];
    s_edges(waveform, edges);
    s_checkValues(waveform, edges);
    s_checkDirection(waveform, model, edges);
    s_checkSettled(waveform, edges);
    s_checkFixture(waveform);
    s_checkTypical(waveform, &edges[CORNER_TYP], said);
    for (int corner = CORNER_MIN; corner <= CORNER_MAX && waveform->head != nullptr; ++corner) {
        if (edges[corner].numbers > 0 || !hasCorner[corner] || said->corner[corner]) continue;
        const PlaceScope missing(corner);
        ERRLOG_NoteNew(1830, SEC_KeywordName(waveform->kind), waveform->owner, CORNER_Name(corner));
        said->corner[corner] = true;
    }
    s_checkOvershoot(waveform, edges);
    s_checkSpeed(waveform, said);
}

static void s_checkLists(const Wvfrm* rising, const Wvfrm* falling, const Mdl* model,
                         const bool* hasCorner)
{
    Said said = {};
    for (const Wvfrm* waveform = rising; waveform != nullptr; waveform = waveform->next)
        s_checkEdge(waveform, model, hasCorner, &said);
    for (const Wvfrm* waveform = falling; waveform != nullptr; waveform = waveform->next)
        s_checkEdge(waveform, model, hasCorner, &said);
}

static int s_count(const Wvfrm* list)
{
    int count = 0;
    for (; list != nullptr; list = list->next)
        ++count;
    return count;
}

static bool s_typFixture(const Wvfrm* waveform, double* r, double* v)
{
    *r = waveform->R_fixture.value;
    return waveform->R_fixture.state == CELL_NUMBER &&
           WVFRM_FixtureVoltage(waveform, CORNER_TYP, v) == CELL_NUMBER;
}

static bool s_hasFixture(const Wvfrm* list, double r, double v)
{
    for (; list != nullptr; list = list->next) {
        double itsR = 0.0;
        double itsV = 0.0;
        if (s_typFixture(list, &itsR, &itsV) && itsR == r && itsV == v) return true;
    }
    return false;
}

// Each edge with the fixtures of the other; both edges at one load voltage only.
static void s_checkFixtures(const Mdl* model)
{
    double r = 0.0;
    double v = 0.0;
    for (const Wvfrm* waveform = model->rising; waveform != nullptr; waveform = waveform->next) {
        const PlaceScope at(waveform);
        if (s_typFixture(waveform, &r, &v) && !s_hasFixture(model->falling, r, v))
            ERRLOG_NoteNew(1837, model->name, r, v);
    }
    for (const Wvfrm* waveform = model->falling; waveform != nullptr; waveform = waveform->next) {
        const PlaceScope at(waveform);
        if (s_typFixture(waveform, &r, &v) && !s_hasFixture(model->rising, r, v))
            ERRLOG_NoteNew(1838, model->name, r, v);
    }
    if (!CURVE_IsPushPull(model)) return;
    int fixtures = 0;
    double only = 0.0;
    for (const Wvfrm* list : {model->rising, model->falling}) {
        for (; list != nullptr; list = list->next) {
            if (!s_typFixture(list, &r, &v)) continue;
            if (fixtures++ == 0) only = v;
            if (!s_sameVoltage(only, v)) return;
        }
    }
    if (fixtures > 0) ERRLOG_NoteNew(1839, model->name);
}

static bool s_sameVoltages(const Wvfrm* a, const Wvfrm* b)
{
    const RngpLine* p = a->head;
    const RngpLine* q = b->head;
    for (; p != nullptr && q != nullptr; p = p->next, q = q->next) {
        if (p->x != q->x || p->typState != q->typState || p->typ != q->typ) return false;
    }
    return p == nullptr && q == nullptr && a->head != nullptr;
}

// One table copied under several fixtures.
static void s_checkCopies(const Wvfrm* list)
{
    for (const Wvfrm* waveform = list; waveform != nullptr; waveform = waveform->next) {
        double r = 0.0;
        double v = 0.0;
        if (!s_typFixture(waveform, &r, &v)) continue;
        for (const Wvfrm* earlier = list; earlier != waveform; earlier = earlier->next) {
            double itsR = 0.0;
            double itsV = 0.0;
            if (!s_typFixture(earlier, &itsR, &itsV) || (itsR == r && itsV == v) ||
                !s_sameVoltages(earlier, waveform))
                continue;
            const PlaceScope at(waveform);
            ERRLOG_WarnNew(1841, SEC_KeywordName(waveform->kind), waveform->owner);
            break;
        }
    }
}

static bool s_isTooMany(const Wvfrm* rising, const Wvfrm* falling, const char* owner)
{
    if (s_count(rising) + s_count(falling) <= WVFRM_MAX_PER_OWNER) return false;
    ERRLOG_ErrorNew(1818, owner, WVFRM_MAX_PER_OWNER);
    return true;
}

void WVFRM_CheckModel(const Mdl* model, const bool* hasCorner)
{
    s_checkLists(model->rising, model->falling, model, hasCorner);
    // The pairs of too many waveforms would be too many to look at.
    if (s_isTooMany(model->rising, model->falling, model->name)) return;
    s_checkCopies(model->rising);
    s_checkCopies(model->falling);
    s_checkFixtures(model);
}

void WVFRM_CheckSubMdl(const SubMdl* submodel, const bool* hasCorner)
{
    WVFRM_Check(submodel->gndPulse);
    WVFRM_Check(submodel->powerPulse);
    s_checkLists(submodel->rising, submodel->falling, nullptr, hasCorner);
    s_isTooMany(submodel->rising, submodel->falling, submodel->name);
}
