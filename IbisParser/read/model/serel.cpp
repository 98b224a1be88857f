// Series elements of Series and Series_switch models.
#include "IbisParser/serel.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>

#include "IbisParser/base/corner.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/krng.h"
#include "IbisParser/read/model/mdl.h"
#include "IbisParser/vitbl.h"

static const char s_Module[] = "IbisParser/serel";

namespace {

enum Least { LEAST_ZERO, LEAST_ABOVE_ZERO };

const struct {
    int code;
    RngRange* SerEl::*slot;
    Least least;
} ranges[] = {
    {KEY_R_SERIES, &SerEl::R, LEAST_ABOVE_ZERO},   {KEY_L_SERIES, &SerEl::L, LEAST_ZERO},
    {KEY_RL_SERIES, &SerEl::Rl, LEAST_ABOVE_ZERO}, {KEY_C_SERIES, &SerEl::C, LEAST_ZERO},
    {KEY_LC_SERIES, &SerEl::Lc, LEAST_ZERO},       {KEY_RC_SERIES, &SerEl::Rc, LEAST_ABOVE_ZERO},
};

// Elements that stand in series with another one.
const struct Need {
    ErrNumber<const char*> number;
    RngRange* SerEl::*element;
    RngRange* SerEl::*needs;
} elementNeeds[] = {
    {2806, &SerEl::Rl, &SerEl::L},
    {2807, &SerEl::Rc, &SerEl::C},
    {2808, &SerEl::Lc, &SerEl::C},
};

// Of the model that is being read: the state that elements belong to, and the open table. mdl keeps
// only one model open, and a new one starts with its [Model] line.
struct Reading {
    const Mdl* model;
    SerElState state;
    Vitbl* table;
};
Reading reading = {nullptr, SEREL_PLAIN, nullptr};

SerEl* elementsOf(Mdl* model, SerElState state)
{
    if (model->series[state] == nullptr) {
        void* block = nullptr;
        if (!CMN_malloc(&block, sizeof(SerEl))) return nullptr;
        model->series[state] = static_cast<SerEl*>(block);
        PLACE_Remember(block);
    }
    return model->series[state];
}

// [On] or [Off].
int stateLine(Mdl* model, int code)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info != nullptr && info->type != MDL_SERIES_SWITCH)
        ERRLOG_LineErrorNew(2803, SEC_KeywordName(code), model->name);
    reading.state = code == KEY_ON ? SEREL_ON : SEREL_OFF;
    return elementsOf(model, reading.state) != nullptr;
}

void rangeLine(Mdl* model, RngRange** slot, Least least, const char* name, const char* text)
{
    if (*slot != nullptr) {
        ERRLOG_LineErrorNew(2804, name, model->name);
        return;
    }
    KRNG_SetRange(slot, text, name);
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const RngSingle cell = MDL_Cell(*slot, corner);
        if (MDL_IsNumber(cell) &&
            (cell.value < 0.0 || (least == LEAST_ABOVE_ZERO && cell.value == 0.0)))
            ERRLOG_LineErrorNew(2805, name, model->name, CORNER_Short(corner));
    }
}

bool isEmpty(const SerEl* elements)
{
    if (elements == nullptr) return true;
    for (const auto& row : ranges)
        if (elements->*(row.slot) != nullptr) return false;
    return elements->current == nullptr && elements->mosfets == nullptr;
}

void checkState(const Mdl* model, const SerEl* elements)
{
    for (const Need& row : elementNeeds)
        if (elements->*(row.element) != nullptr && elements->*(row.needs) == nullptr)
            ERRLOG_LineErrorNew(row.number, model->name);
    if (elements->current != nullptr && elements->mosfets != nullptr)
        ERRLOG_LineWarnNew(2811, model->name);
}

}  // namespace

int SEREL_KeywordLine(Mdl* model, int code, const char* text)
{
    CMN_ASSERT(model != nullptr && text != nullptr);
    if (reading.model != model) reading = {model, SEREL_PLAIN, nullptr};
    reading.table = nullptr;
    if (code == KEY_ON || code == KEY_OFF) return stateLine(model, code);

    const char* name = SEC_KeywordName(code);
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info != nullptr && info->type != MDL_SERIES && info->type != MDL_SERIES_SWITCH)
        ERRLOG_LineErrorNew(2801, name, model->name);
    else if (info != nullptr && info->type == MDL_SERIES_SWITCH && reading.state == SEREL_PLAIN)
        ERRLOG_LineErrorNew(2802, name, model->name);
    SerEl* elements = elementsOf(model, reading.state);
    if (elements == nullptr) return 0;

    if (code == KEY_SERIES_MOSFET)
        return VITBL_NewMosfet(&elements->mosfets, model->name, &reading.table);
    if (code == KEY_SERIES_CURRENT) {
        if (elements->current != nullptr) {
            ERRLOG_LineErrorNew(2804, name, model->name);
            return 0;
        }
        if (!VITBL_New(&elements->current, name, model->name)) return 0;
        reading.table = elements->current;
        return 1;
    }
    for (const auto& row : ranges)
        if (row.code == code) rangeLine(model, &(elements->*(row.slot)), row.least, name, text);
    return 1;
}

int SEREL_ReceiveLine(Mdl* model, const char* line)
{
    CMN_ASSERT(model != nullptr && line != nullptr);
    return reading.model == model && VITBL_ReceiveLine(reading.table, line);
}

int SEREL_Fini(Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    if (reading.model != model) return 0;
    Vitbl* table = reading.table;
    reading.table = nullptr;
    return VITBL_Fini(table);
}

int SEREL_EndOfModel(const Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    reading = {nullptr, SEREL_PLAIN, nullptr};
    for (const SerEl* elements : model->series)
        if (elements != nullptr) checkState(model, elements);

    if (model->type == MDL_SERIES &&
        std::all_of(std::begin(model->series), std::end(model->series), isEmpty))
        ERRLOG_LineErrorNew(2809, model->name);
    if (model->type != MDL_SERIES_SWITCH) return 1;
    if (MDL_Found(model, KEY_ON) && isEmpty(model->series[SEREL_ON]))
        ERRLOG_LineErrorNew(2809, model->name);
    for (const int code : {KEY_ON, KEY_OFF})
        if (!MDL_Found(model, code)) ERRLOG_LineErrorNew(2810, model->name, SEC_KeywordName(code));
    return 1;
}

void SEREL_Free(SerEl* elements)
{
    reading = {nullptr, SEREL_PLAIN, nullptr};
    if (elements == nullptr) return;
    for (const auto& row : ranges)
        RNG_Free(elements->*(row.slot));
    VITBL_Free(elements->current);
    VITBL_Free(elements->mosfets);
    SEC_FreeRecord(elements);
}
