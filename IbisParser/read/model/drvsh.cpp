// [Driver Schedule], while reading and as a check of the whole document.
#include "IbisParser/drvsh.h"

#include <cmath>
#include <initializer_list>

#include "IbisParser/dly.h"
#include "IbisParser/errlog.h"
#include "IbisParser/read/model/mdl.h"

static const char s_Module[] = "IbisParser/drvsh";

static const char* const s_delayNames[DELAY_COUNT] = {"Rise_on", "Rise_off", "Fall_on", "Fall_off"};

// The link that ends the list of the model that is being read.
static DrvSh** s_tail = nullptr;

static int s_receive(Mdl* model, const CmnArgs* args)
{
    if (args->argc != DELAY_COUNT + 1) {
        ERRLOG_LineErrorNew(3002, args->argc);
        return 0;
    }
    auto* row = static_cast<DrvSh*>(SEC_NewPart(3001, s_Module, __LINE__, sizeof(DrvSh)));
    if (row == nullptr) return 0;
    const unsigned limit = SEC_Limit(LIMIT_SIGNAL);
    if (!SEC_CopyName(row->model, args->argv[0], limit))
        ERRLOG_LineErrorNew(3003, args->argv[0], static_cast<int>(limit));
    for (int i = 0; i < DELAY_COUNT; ++i)
        DLY_ParseNotNegative(args->argv[i + 1], s_delayNames[i], row->model, &row->delay[i].value,
                             &row->delay[i].state);
    SEC_Append(&model->schedule, &s_tail, row);
    return 1;
}

int DRVSH_KeywordLine(Mdl* model)
{
    CMN_ASSERT(model != nullptr && model->schedule == nullptr);
    s_tail = nullptr;
    return 1;
}

int DRVSH_ReceiveLine(Mdl* model, const char* line)
{
    CMN_ASSERT(model != nullptr && line != nullptr);
    CmnArgs args = {};
    if (!CMN_ArgParse(line, DELAY_COUNT + 1, &args)) {
        ERRLOG_LineBugNew(3000, "Driver Schedule", s_Module, __LINE__);
        return 0;
    }
    const int done = s_receive(model, &args);
    CMN_ArgFree(&args);
    return done;
}

int DRVSH_Fini(Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    s_tail = nullptr;
    if (model->schedule == nullptr) ERRLOG_LineErrorNew(3004, model->name);
    return model->schedule != nullptr;
}

void DRVSH_FreeList(DrvSh* head)
{
    SEC_FreeList(head, SEC_FreeRecord<DrvSh>);
}

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
            ERRLOG_WarnNew(3011, model->name, row->model, s_delayNames[edge.first], first.value,
                           s_delayNames[edge.second], second.value);
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
        const MdlTypeInfo* info = MDL_TypeInfo(model->type);
        if (info != nullptr && !info->drives && !MDL_Refused(model, KEY_DRIVER_SCHEDULE))
            ERRLOG_ErrorNew(3012, model->name, info->name);
        for (const DrvSh* row = model->schedule; row != nullptr; row = row->next) {
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
