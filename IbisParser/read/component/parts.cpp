// What the parts of a component ask of it, and how they split their lines.
#include <iterator>

#include "IbisParser/base/raise.h"
#include "IbisParser/base/token.h"
#include "IbisParser/read/component/cmpnt.h"

static const char s_Module[] = "IbisParser/cmpnt";

Pin* CMPNT_FindPin(const Cmpnt* component, const char* name)
{
    CMN_ASSERT(component != nullptr && name != nullptr);
    if (component->pinIndex == nullptr) return nullptr;
    return static_cast<Pin*>(IDX_FindName(component->pinIndex, name));
}

int CMPNT_HasPin(const Cmpnt* component, const char* pin)
{
    return component->pins == nullptr || CMPNT_FindPin(component, pin) != nullptr;
}

int CMPNT_SplitLine(const PartFailure* failure, int line, const char* keyword, const char* text,
                    int max, CmpntItems* items)
{
    CMN_ASSERT(max <= static_cast<int>(std::size(items->argv)));
    items->text = CMN_StrMake(text);
    if (items->text == nullptr) {
        ERRLOG_LineBugNew(failure->unparsed, keyword, failure->module, line);
        return 0;
    }
    char* rest = items->text;
    for (const char* item = TOKEN_Next(&rest); item != nullptr; item = TOKEN_Next(&rest)) {
        ++items->argc;
        if (items->nStored < max) items->argv[items->nStored++] = item;
    }
    return 1;
}
