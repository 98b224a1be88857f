// Models against the document: who uses them, and the loads across pairs of pins.
#include <cstddef>

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/names.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/msel.h"
#include "IbisParser/read/model/mdl.h"
#include "IbisParser/testdata.h"
#include "IbisParser/testload.h"

namespace {

// Where a model's name stands.
enum Use { USE_PIN = 1, USE_SCHEDULE = 2, USE_OTHER = 4 };

// Uses by name. The names belong to the records of the document.
class Uses {
public:
    void Add(const char* name, Use use)
    {
        void** value = nullptr;
        if (*name == '\0' || !IDX_SlotName(&m_Names, name, &value)) return;
        *value = bits + (Of(*value) | use);
        m_All |= use;
    }
    int Of(const char* name) const { return Of(IDX_FindName(&m_Names, name)); }
    int All() const { return m_All; }

private:
    static int Of(const void* value)
    {
        return value == nullptr ? 0 : static_cast<int>(static_cast<const char*>(value) - bits);
    }

    inline static char bits[8] = {};
    SecScopedIndex m_Names;
    int m_All = 0;
};

void addComponents(const IbisRoot* root, Uses* uses)
{
    for (const Cmpnt* component = root->cmpnts; component; component = component->next) {
        for (const Pin* pin = component->pins; pin; pin = pin->next)
            if (pin->kind == PIN_MODEL) uses->Add(pin->model, USE_PIN);
        for (const SerMap* pair = component->seriesPins; pair; pair = pair->next)
            uses->Add(pair->model, USE_OTHER);
    }
}

void addUses(const IbisRoot* root, const Mdl* models, Uses* uses)
{
    addComponents(root, uses);
    for (const Msel* selector = root->msels; selector; selector = selector->next)
        for (const MselRow* row = selector->rows; row; row = row->next)
            uses->Add(row->model, USE_OTHER);
    for (const TestData* test = root->testData; test; test = test->next) {
        uses->Add(test->driver, USE_OTHER);
        uses->Add(test->driverInv, USE_OTHER);
    }
    for (const TestLoad* load = root->testLoads; load; load = load->next) {
        uses->Add(load->receiver, USE_OTHER);
        uses->Add(load->receiverInv, USE_OTHER);
    }
    for (const Mdl* model = models; model; model = model->next)
        for (const DrvSh* row = model->schedule; row; row = row->next)
            uses->Add(row->model, USE_SCHEDULE);
}

// A buffer without capacitance. Of a model that others only schedule it is not used at all, and
// with an algorithmic model it is often in the channel.
void testCapacitance(const Mdl* model, int use)
{
    const RngSingle typ = MDL_Cell(model->C_comp, CORNER_TYP);
    if (MDL_IsNumber(typ) && typ.value == 0.0 && !MDL_HasPartCapacitance(model) &&
        !MDL_Found(model, KEY_ALGORITHMIC_MODEL) && use != USE_SCHEDULE)
        ERRLOG_WarnNew(129, model->name);
}

void testUses(const IbisRoot* root, const Mdl* models)
{
    Uses uses;
    addUses(root, models, &uses);
    const SecFileOrder<const Mdl> order(models);
    for (const Mdl* model : order) {
        const PlaceScope at(SUBJECT_MODEL, model);
        testCapacitance(model, uses.Of(model->name));
    }
    unsigned used = 0;
    for (const Mdl* model : order)
        used += uses.Of(model->name) != 0;
    if (root->cmpnts != nullptr && (uses.All() & USE_PIN) == 0 && used == 0) {
        ERRLOG_ErrorNew(211, static_cast<unsigned>(order.Count()));
        return;
    }
    for (const Mdl* model : order) {
        const PlaceScope at(SUBJECT_MODEL, model);
        const int use = uses.Of(model->name);
        if (use == 0) ERRLOG_WarnNew(210, model->name);
        if (use == USE_SCHEDULE) ERRLOG_NoteNew(212, model->name);
    }
}

// The load across a pair of pins.
void testDifferentialLoad(const Mdl* model, const MdlPairs& pairs)
{
    const struct {
        const char* name;
        const RngSingle& own;
        MdlSpecItem item;
    } loads[] = {{"Rref_diff", model->Rref_diff, SPEC_RREF_DIFF},
                 {"Cref_diff", model->Cref_diff, SPEC_CREF_DIFF}};
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (info == nullptr || info->differential || pairs.Has(model->name)) return;
    for (const auto& load : loads)
        if (load.own.state != CELL_ABSENT || MDLSPEC_Get(model, load.item) != nullptr)
            ERRLOG_WarnNew(138, model->name, load.name);
}

}  // namespace

int MDL_TestMdlReference(const Mdl* models)
{
    IbisRoot* root = nullptr;
    if (!IBIS_GetIBIS(&root)) return 0;
    const MdlPairs pairs(root);
    for (const Mdl* model : SecFileOrder<const Mdl>(models)) {
        const PlaceScope at(SUBJECT_MODEL, model);
        testDifferentialLoad(model, pairs);
    }
    testUses(root, models);
    return 1;
}
