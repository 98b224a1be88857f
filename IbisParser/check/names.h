// The names of a document and whom they stand for.
#ifndef IBISPARSER_CHECK_NAMES_H
#define IBISPARSER_CHECK_NAMES_H

#include "IbisParser/cmpnt.h"
#include "IbisParser/mdl.h"
#include "IbisParser/msel.h"
#include "IbisParser/store/section.h"

// Models and selectors of a document by name, for the checks of a whole file. Both lists must
// outlive it, as must the names that are looked up.
class CmpntNames {
public:
    CmpntNames(const Mdl* models, const Msel* selectors);

    const Mdl* Model(const char* name) const { return m_Models.Find(name); }
    const Msel* Selector(const char* name) const { return m_Selectors.Find(name); }
    // The model of that name, else the first defined model of that selector, else null.
    const Mdl* Resolve(const char* name) const;

private:
    SecNameIndex<const Mdl> m_Models;
    SecNameIndex<const Msel> m_Selectors;
    const Mdl* Find(const char* name) const;

    mutable SecScopedIndex m_Defaults;         // models of the selectors, as they are found
    mutable const char* m_LastName = nullptr;  // neighbouring pins mostly share a model
    mutable const Mdl* m_Last = nullptr;
};

// The type as a file writes it; "unknown" when the model gave none.
const char* CMPNT_TypeName(const Mdl* model);

// Names of the models that stand at a pin of a differential pair, selectors taken apart.
class MdlPairs {
public:
    explicit MdlPairs(IbisRoot* root);
    bool Has(const char* model) const;

private:
    SecScopedIndex m_Names;
};

#endif
