// The names of a document: which are defined twice, and whom they stand for.
#include "IbisParser/check/names.h"

#include <cstring>

#include "IbisParser/base/index.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/cmn.h"
#include "IbisParser/nml.h"

static const char s_Module[] = "IbisParser/nml";

// By the keywords that begin the records.
static ErrSubject s_subjectOf(const char* kind)
{
    static const struct {
        const char* kind;
        ErrSubject subject;
    } rows[] = {
        {"Component", SUBJECT_COMPONENT},         {"Model", SUBJECT_MODEL},
        {"Model Selector", SUBJECT_SELECTOR},     {"Submodel", SUBJECT_SUBMODEL},
        {"Package Model", SUBJECT_PACKAGE_MODEL}, {"Board", SUBJECT_BOARD},
        {"External Circuit", SUBJECT_CIRCUIT},    {"Test Data", SUBJECT_TEST_DATA},
        {"Test Load", SUBJECT_TEST_LOAD},
    };
    for (const auto& row : rows)
        if (std::strcmp(row.kind, kind) == 0) return row.subject;
    return SUBJECT_NONE;
}

int NML_CheckUnique(const void* head, size_t nameOffset, size_t nextOffset, const char* kindText)
{
    CMN_ASSERT(kindText != nullptr);
    const auto nameOf = [=](const void* record) {
        return static_cast<const char*>(record) + nameOffset;
    };
    const auto nextOf = [=](const void* record) {
        return *reinterpret_cast<const void* const*>(static_cast<const char*>(record) + nextOffset);
    };
    std::size_t count = 0;
    for (const void* record = head; record != nullptr; record = nextOf(record))
        ++count;
    if (count < 2) return 1;
    const SecArray<const char*> names(count);
    if (!names) return 0;
    std::size_t place = count;
    for (const void* record = head; record != nullptr; record = nextOf(record))
        names[--place] = nameOf(record);
    SecScopedIndex known;
    int unique = 1;
    for (std::size_t i = 0; i < count; ++i) {
        void** value = nullptr;
        if (names[i][0] == '\0' || !IDX_SlotName(&known, names[i], &value)) continue;
        if (*value != nullptr) {
            const PlaceScope at(s_subjectOf(kindText), names[i],
                                PLACE_Of(static_cast<const void*>(names[i] - nameOffset)));
            ERRLOG_ErrorNew(3600, kindText, names[i]);
            unique = 0;
        }
        *value = names.Get();
    }
    return unique;
}

// Stands for a selector of which no model is defined.
static const char s_none = 0;

CmpntNames::CmpntNames(const Mdl* models, const Msel* selectors)
    : m_Models(models), m_Selectors(selectors)
{
}

const Mdl* CmpntNames::Resolve(const char* name) const
{
    if (m_LastName == nullptr || std::strcmp(name, m_LastName) != 0) {
        m_Last = Find(name);
        m_LastName = name;
    }
    return m_Last;
}

const Mdl* CmpntNames::Find(const char* name) const
{
    const Mdl* model = m_Models.Find(name);
    const Msel* selector = model == nullptr ? m_Selectors.Find(name) : nullptr;
    if (selector == nullptr) return model;
    void** value = nullptr;
    if (!IDX_SlotName(&m_Defaults, selector->name, &value)) return nullptr;
    if (*value == nullptr) {
        for (const MselRow* row = selector->rows; row != nullptr && model == nullptr;
             row = row->next)
            model = m_Models.Find(row->model);
        const void* found = model != nullptr ? static_cast<const void*>(model) : &s_none;
        *value = const_cast<void*>(found);
    }
    return *value == &s_none ? nullptr : static_cast<const Mdl*>(*value);
}

const char* CMPNT_TypeName(const Mdl* model)
{
    const MdlTypeInfo* type = MDL_TypeInfo(model->type);
    return type != nullptr ? type->name : "unknown";
}

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

bool MdlPairs::Has(const char* model) const
{
    return IDX_FindName(&m_Names, model) != nullptr;
}
