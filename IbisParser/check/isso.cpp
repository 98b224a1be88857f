// Span and value of the supply-collapse tables, time spans of composite currents.
#include <cmath>

#include "IbisParser/base/corner.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/cmn.h"
#include "IbisParser/curve.h"
#include "IbisParser/read/model/isso.h"
#include "IbisParser/read/model/table.h"

static const char s_Module[] = "IbisParser/isso_check";

// The table must cover the whole collapse of the typical supply.
static void s_testSpan(const Mdl* model, const IssoRow* isso, double supply)
{
    Curve curve;
    if (CURVE_Prepare(model->*isso->table, CORNER_TYP, 0, &curve) != CURVE_BUILT) return;
    const double low = curve.points[0].v;
    const double high = curve.points[curve.count - 1].v;
    const double slack = ISSO_SPAN_TOLERANCE * supply;
    if (low > -supply + slack || high < supply - slack)
        ERRLOG_CautionNew(4907, model->name, isso->name, low, high, -supply, supply);
    CURVE_Free(&curve);
}

// Without collapse the buffer drives with its full current.
static void s_testDrive(const Mdl* model, const IssoRow* isso, int corner, double supply)
{
    double atZero = 0.0;
    double drive = 0.0;
    int outside = 0;
    if (!CURVE_Eval(model->*isso->table, corner, 0.0, 0, &atZero, &outside) || outside ||
        !CURVE_Eval(model->*isso->drive, corner, supply, 0, &drive, &outside) || outside)
        return;
    if (std::fabs(atZero - drive) > ISSO_DRIVE_TOLERANCE * std::fabs(drive))
        ERRLOG_WarnNew(4908, model->name, CORNER_Short(corner), isso->name, atZero, drive);
}

static void s_testTables(const Mdl* model, const IssoRow* isso)
{
    for (int corner = CORNER_TYP; corner < CORNER_COUNT; ++corner) {
        double high = 0.0;
        double low = 0.0;
        if (!MDL_RefVoltage(model, MDL_REF_PULLUP, corner, &high) ||
            !MDL_RefVoltage(model, MDL_REF_PULLDOWN, corner, &low) || high <= low)
            continue;
        const PlaceScope at(corner);
        if (corner == CORNER_TYP) s_testSpan(model, isso, high - low);
        s_testDrive(model, isso, corner, high - low);
    }
}

// Adds to the numbers of waveforms with and without a composite current.
static void s_testComposite(const Mdl* model, const Wvfrm* list, int count[2])
{
    for (const Wvfrm* waveform = list; waveform != nullptr; waveform = waveform->next) {
        const PlaceScope at(waveform);
        ++count[waveform->composite != nullptr];
        if (waveform->composite == nullptr || waveform->head == nullptr) continue;
        const double first = waveform->head->x;
        const double last = TABLE_Tail(waveform->head)->x;
        const double compositeFirst = waveform->composite->x;
        const double compositeLast = TABLE_Tail(waveform->composite)->x;
        const double slack = ISSO_TIME_TOLERANCE * std::fabs(last - first);
        if (std::fabs(compositeFirst - first) > slack || std::fabs(compositeLast - last) > slack)
            ERRLOG_WarnNew(4909, model->name, compositeFirst, compositeLast);
    }
}

int ISSO_Test(const Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    for (const IssoRow& isso : issoRows) {
        const PlaceScope at(model->*isso.table);
        if (model->*isso.table != nullptr) s_testTables(model, &isso);
    }
    int count[2] = {0, 0};
    s_testComposite(model, model->rising, count);
    s_testComposite(model, model->falling, count);
    if (count[0] > 0 && count[1] > 0) ERRLOG_NoteNew(4910, model->name);
    return 1;
}
