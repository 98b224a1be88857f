// [Node Declarations]: nodes of the die.
#include "IbisParser/node.h"

#include "IbisParser/base/raise.h"
#include "IbisParser/read/component/cmpnt.h"

static const char s_Module[] = "IbisParser/node";

int NODE_Begin(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    if (component->calls != nullptr) ERRLOG_LineErrorNew(2902);
    return 1;
}

static void s_add(Cmpnt* component, const char* name)
{
    CmpntReading* reading = component->reading;
    Node* node = static_cast<Node*>(SEC_NewPart(2901, s_Module, __LINE__, sizeof(Node)));
    if (node == nullptr) return;
    node->line = PARSE_GetLineNum();
    if (!SEC_CopyName(node->name, name, SIZE_NAME)) ERRLOG_LineErrorNew(2909, name, SIZE_NAME);
    if (CMPNT_FindPin(component, name) != nullptr) ERRLOG_LineErrorNew(2904, node->name);
    if (!SEC_SetAdd(&reading->nodes, node->name)) {
        ERRLOG_LineErrorNew(2903, node->name);
        SEC_FreeRecord(node);
        return;
    }
    SEC_Append(&component->nodes, &reading->nodeTail, node);
}

int NODE_ReceiveLine(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    // Every blank-separated item is a name, and two characters hold at most one.
    const int most = static_cast<int>(std::strlen(line) / 2) + 1;
    SecArgs args;
    if (!CMN_ArgParse(line, most, &args)) {
        ERRLOG_LineBugNew(2900, "Node Declarations", s_Module, __LINE__);
        return 0;
    }
    for (int i = 0; i < args.nStored; ++i)
        s_add(component, args.argv[i]);
    return 1;
}

int NODE_End(Cmpnt* component)
{
    CMN_ASSERT(component != nullptr);
    if (component->nodes == nullptr) ERRLOG_LineErrorNew(2905);
    return component->nodes != nullptr;
}

int NODE_Fini(Cmpnt* component)
{
    CMN_ASSERT(component != nullptr);
    ERRLOG_LineErrorNew(2906, component->name);
    return NODE_End(component);
}

Node* NODE_Find(Node* head, const char* name)
{
    CMN_ASSERT(name != nullptr);
    return SEC_FindByName(head, name);
}

void NODE_FreeList(Node* head)
{
    SEC_FreeList(head, SEC_FreeRecord<Node>);
}
