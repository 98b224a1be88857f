// [Driver Schedule]: the models that it names, and their delays.
#include <cmath>
#include <initializer_list>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/drvsh.h"
#include "IbisParser/read/model/mdl.h"

// The delays bring the scheduled model back to its starting state. Rise_on and Fall_off drive it
// high, Rise_off and Fall_on low.
static void s_checkDelays(const Mdl* model, const DrvSh* row)
{
    unsigned given = 0;
    for (const RngSingle& delay : row->delay) {
        if (delay.state == CELL_ABSENT) return;  // reported while reading
        given = 2 * given + MDL_IsNumber(delay);
    }
    switch (given) {
        case 0b0000:
            ERRLOG_ErrorNew(3009, model->name, row->model);
            return;
        case 0b1010:  // follows the input
        case 0b0101:  // follows it inverted
        case 0b1100:  // a pulse in the rising edge
        case 0b0011:  // a low pulse in the falling edge
        case 0b1111:  // pulses in both
            break;
        default:
            ERRLOG_ErrorNew(3010, model->name, row->model);
            return;
    }
    static const struct {
        DrvShDelay first, second;
    } edges[] = {{DELAY_RISE_ON, DELAY_RISE_OFF}, {DELAY_FALL_ON, DELAY_FALL_OFF}};
    for (const auto& edge : edges) {
        const RngSingle& first = row->delay[edge.first];
        const RngSingle& second = row->delay[edge.second];
        if (MDL_IsNumber(first) && MDL_IsNumber(second) && first.value >= second.value)
            ERRLOG_WarnNew(3011, model->name, row->model, drvshDelayNames[edge.first], first.value,
                           drvshDelayNames[edge.second], second.value);
    }
}

// Typical references of the two models differ by more than one percent.
static bool s_suppliesDiffer(const Mdl* a, const Mdl* b)
{
    for (const int which : {MDL_REF_PULLUP, MDL_REF_PULLDOWN}) {
        double va = 0.0, vb = 0.0;
        if (MDL_RefVoltage(a, which, CORNER_TYP, &va) &&
            MDL_RefVoltage(b, which, CORNER_TYP, &vb) &&
            std::fabs(va - vb) > 0.01 * std::fmax(std::fabs(va), std::fabs(vb)))
            return true;
    }
    return false;
}

static void s_checkScheduled(const Mdl* model, const Mdl* scheduled)
{
    if (scheduled == model) {
        ERRLOG_ErrorNew(3006, model->name);
        return;
    }
    if (scheduled->schedule != nullptr) ERRLOG_ErrorNew(3007, model->name, scheduled->name);
    const MdlTypeInfo* info = MDL_TypeInfo(scheduled->type);
    if (info != nullptr && !info->drives)
        ERRLOG_ErrorNew(3008, model->name, scheduled->name, info->name);
}

static void s_checkSame(const Mdl* model, const Mdl* scheduled)
{
    if (scheduled == model) return;
    if (s_suppliesDiffer(model, scheduled)) ERRLOG_WarnNew(3013, model->name, scheduled->name);
    const RngRange* capacitance = scheduled->C_comp;
    if (capacitance != nullptr && capacitance->typState == CELL_NUMBER && capacitance->typ > 0.0)
        ERRLOG_NoteNew(3014, model->name, scheduled->name, model->name);
}

int DRVSH_Test(const Mdl* models)
{
    const SecNameIndex<const Mdl> byName(models);
    for (const Mdl* model : SecFileOrder<const Mdl>(models)) {
        if (model->schedule == nullptr) continue;
        const PlaceScope at(SUBJECT_MODEL, model);
        const MdlTypeInfo* info = MDL_TypeInfo(model->type);
        if (info != nullptr && !info->drives && !MDL_Refused(model, KEY_DRIVER_SCHEDULE))
            ERRLOG_ErrorNew(3012, model->name, info->name);
        for (const DrvSh* row = model->schedule; row != nullptr; row = row->next) {
            const PlaceScope in(row);
            const Mdl* scheduled = byName.Find(row->model);
            if (scheduled == nullptr)
                ERRLOG_ErrorNew(3005, model->name, row->model);
            else
                s_checkScheduled(model, scheduled);
            s_checkDelays(model, row);
            if (scheduled != nullptr) s_checkSame(model, scheduled);
        }
    }
    return 1;
}
