// [Alternate Package Models].
#include "IbisParser/apkg.h"

#include "IbisParser/base/raise.h"
#include "IbisParser/read/component/cmpnt.h"

static const char s_Module[] = "IbisParser/apkg";

int APKG_Begin(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    if (component->packageModel[0] == '\0') ERRLOG_LineErrorNew(602);
    if (*line != '\0') ERRLOG_LineWarnNew(608, line);
    return 1;
}

// The whole line is one name, since package models may have blanks in theirs.
int APKG_ReceiveLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    Apkg* item = static_cast<Apkg*>(SEC_NewPart(601, s_Module, __LINE__, sizeof(Apkg)));
    if (item == nullptr) return 0;
    item->line = PARSE_GetLineNum();
    if (!SEC_CopyName(item->name, line, SIZE_NAME)) ERRLOG_LineErrorNew(603, line, SIZE_NAME);
    if (!SEC_SetAdd(&component->reading->alternates, item->name)) {
        ERRLOG_LineErrorNew(604, item->name);
        SEC_FreeRecord(item);
        return 0;
    }
    SEC_Append(&component->alternates, &component->reading->alternateTail, item);
    return 1;
}

int APKG_End(Cmpnt* component)
{
    CMN_ASSERT(component != nullptr);
    if (component->alternates == nullptr) ERRLOG_LineErrorNew(605);
    return component->alternates != nullptr;
}

int APKG_Fini(Cmpnt* component)
{
    CMN_ASSERT(component != nullptr);
    ERRLOG_LineErrorNew(606, component->name);
    return APKG_End(component);
}

void APKG_FreeList(Apkg* head)
{
    SEC_FreeList(head, SEC_FreeRecord<Apkg>);
}
