// mdl: the checks that need the whole document.
#include <cstddef>
#include <initializer_list>

#include "IbisParser/cmpnt.h"
#include "IbisParser/errlog.h"
#include "IbisParser/msel.h"
#include "IbisParser/nml.h"
#include "IbisParser/read/model/mdl.h"
#include "IbisParser/submdl.h"
#include "IbisParser/testdata.h"
#include "IbisParser/testload.h"

namespace {

// Where a model's name stands.
enum Use { USE_PIN = 1, USE_SCHEDULE = 2, USE_OTHER = 4 };

// Uses by name. The names belong to the records of the document.
class Uses {
public:
    Uses() = default;
    ~Uses() { IDX_Clear(&m_Names); }
    Uses(const Uses&) = delete;
    Uses& operator=(const Uses&) = delete;

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
    IdxTable m_Names = {nullptr, 0, 0};
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
    for (const Mdl* model : order)
        testCapacitance(model, uses.Of(model->name));
    unsigned used = 0;
    for (const Mdl* model : order)
        used += uses.Of(model->name) != 0;
    if (root->cmpnts != nullptr && (uses.All() & USE_PIN) == 0 && used == 0) {
        ERRLOG_ErrorNew(211, static_cast<unsigned>(order.Count()));
        return;
    }
    for (const Mdl* model : order) {
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

// The added submodels of one model.

// The mode that a model cannot be in, or 0. An output that is always on, or an open one, is never
// off; what does not drive is never driving.
int impossibleMode(const MdlTypeInfo* info)
{
    const bool isOpen = info->pullup == MDL_ZERO || info->pulldown == MDL_ZERO;
    switch (info->group) {
        case MDL_GROUP_TX:
            return info->floats && !isOpen ? 0 : ADDSUB_NON_DRIVING;
        case MDL_GROUP_RX:
        case MDL_GROUP_TERMINATOR:
            return ADDSUB_DRIVING;
        default:
            return 0;
    }
}

void testAdded(const Mdl* model, const AddSub* row, const SubMdl* submodel)
{
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    const char* mode = ADDSUB_ModeName(row->mode);
    if (info != nullptr &&
        (info->group == MDL_GROUP_SERIES || info->group == MDL_GROUP_SERIES_SWITCH)) {
        ERRLOG_ErrorNew(203, model->name, info->name, row->submodel);
        return;
    }
    if (mode == nullptr) return;
    if (info != nullptr && row->mode == impossibleMode(info))
        ERRLOG_ErrorNew(202, model->name, info->name, mode, row->submodel);
    if (submodel != nullptr && submodel->type == SUBMDL_FALL_BACK &&
        row->mode == ADDSUB_NON_DRIVING)
        ERRLOG_WarnNew(204, model->name, SUBMDL_TypeOf(submodel), row->submodel, mode);
}

// Different bus holders that are active at the same time.
void testHolders(const Mdl* model, const SecNameIndex<const SubMdl>& submodels)
{
    int driving = 0;
    int nonDriving = 0;
    for (const AddSub* row = model->addSubs; row; row = row->next) {
        const SubMdl* submodel = submodels.Find(row->submodel);
        if (submodel == nullptr || submodel->type != SUBMDL_BUS_HOLD) continue;
        driving += (row->allModes & ADDSUB_DRIVING) != 0;
        nonDriving += (row->allModes & ADDSUB_NON_DRIVING) != 0;
    }
    const int crowded =
        (driving > 1 ? ADDSUB_DRIVING : 0) | (nonDriving > 1 ? ADDSUB_NON_DRIVING : 0);
    if (crowded != 0) ERRLOG_WarnNew(206, model->name, ADDSUB_ModeName(crowded));
}

}  // namespace

MdlPairs::MdlPairs(IbisRoot* root)
{
    if (root == nullptr) return;
    const SecNameIndex<const Msel> selectors(root->msels);
    const auto add = [this](const char* name) {
        void** value = nullptr;
        if (!IDX_SlotName(&m_Names, name, &value)) return false;
        const bool isNew = *value == nullptr;
        *value = this;
        return isNew;
    };
    const char* previous = "";
    for (const Cmpnt* component = root->cmpnts; component; component = component->next)
        for (const DiffPin* pair = component->diffPins; pair; pair = pair->next)
            for (const Pin* pin : pair->pins) {
                if (pin == nullptr || pin->kind != PIN_MODEL) continue;
                if (std::strcmp(pin->model, previous) == 0 || !add(pin->model)) continue;
                previous = pin->model;
                const Msel* selector = selectors.Find(pin->model);
                if (selector == nullptr) continue;
                for (const MselRow* row = selector->rows; row; row = row->next)
                    add(row->model);
            }
}

MdlPairs::~MdlPairs()
{
    IDX_Clear(&m_Names);
}

int MdlPairs::Has(const char* model) const
{
    return IDX_FindName(&m_Names, model) != nullptr;
}

int MDL_TestSubMdlReferences(const Mdl* models, const SubMdl* submodels)
{
    SUBMDL_Close();
    const SecNameIndex<const SubMdl> byName(submodels);
    SecSet added = {};
    for (const Mdl* model : SecFileOrder<const Mdl>(models))
        for (const AddSub* row : SecFileOrder<const AddSub>(model->addSubs)) {
            SEC_SetAdd(&added, row->submodel);
            if (byName.Find(row->submodel) == nullptr)
                ERRLOG_ErrorNew(200, model->name, row->submodel);
        }
    NML_CheckUnique(submodels, offsetof(SubMdl, name), offsetof(SubMdl, next), "Submodel");
    for (const SubMdl* submodel : SecFileOrder<const SubMdl>(submodels))
        if (!SEC_SetHas(&added, submodel->name)) ERRLOG_WarnNew(201, submodel->name);
    SEC_SetClear(&added);
    return 1;
}

int MDL_TestSubMdls(const Mdl* models, const SubMdl* submodels)
{
    const SecNameIndex<const SubMdl> byName(submodels);
    for (const Mdl* model : SecFileOrder<const Mdl>(models)) {
        if (model->addSubs == nullptr) continue;
        if (submodels == nullptr) ERRLOG_ErrorNew(205, model->name);
        for (const AddSub* row : SecFileOrder<const AddSub>(model->addSubs))
            testAdded(model, row, byName.Find(row->submodel));
        testHolders(model, byName);
    }
    return 1;
}

int MDL_TestMdlReference(const Mdl* models)
{
    IbisRoot* root = nullptr;
    if (!IBIS_GetIBIS(&root)) return 0;
    const MdlPairs pairs(root);
    for (const Mdl* model : SecFileOrder<const Mdl>(models))
        testDifferentialLoad(model, pairs);
    testUses(root, models);
    return 1;
}
