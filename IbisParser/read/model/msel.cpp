// [Model Selector]: the models that a pin can be given.
#include "IbisParser/msel.h"

#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"
#include "IbisParser/read/model/msel.h"
#include "IbisParser/store/section.h"

static const char s_Module[] = "IbisParser/msel";
static const SecFrame s_frame = {s_Module, 1100, 1101, 1102, 1103, 1104, 1105};

static Msel* s_open = nullptr;
static MselRow** s_tail = nullptr;  // end of its rows
static SecSet s_models = {};        // in its rows

void MSEL_Close()
{
    if (s_open == nullptr) return;
    if (s_open->rows == nullptr) ERRLOG_LineErrorNew(1110, s_open->name);
    SEC_SetClear(&s_models);
    s_open = nullptr;
}

static void s_free(Msel* selector)
{
    if (selector == s_open) {
        SEC_SetClear(&s_models);
        s_open = nullptr;
    }
    SEC_FreeList(selector->rows, SEC_FreeRecord<MselRow>);
    SEC_FreeRecord(selector);
}

int MSEL_Init(void)
{
    MSEL_Close();
    IbisRoot* root = SEC_Root(&s_frame, __LINE__);
    if (root == nullptr) return 0;
    s_open = static_cast<Msel*>(SEC_NewRecord(&s_frame, sizeof(Msel)));
    if (s_open == nullptr) return 0;
    s_open->line = PARSE_GetLineNum();
    s_tail = nullptr;
    return IBIS_AddMsel(root, s_open);
}

// Ends the first blank-separated word of text and returns what follows it.
static char* s_splitWord(char* text)
{
    text += std::strcspn(text, " \t");
    if (*text != '\0') *text++ = '\0';
    return text + std::strspn(text, " \t");
}

static int s_keywordLine(char* text)
{
    const unsigned limit = SEC_Limit(LIMIT_SIGNAL);
    s_splitWord(text);
    if (*text == '\0') ERRLOG_LineErrorNew(1913, "Model Selector");
    if (!SEC_CopyName(s_open->name, text, limit)) ERRLOG_LineErrorNew(1106, text, limit);
    return CMN_ReservedWordErr(text);
}

static int s_dataLine(char* line)
{
    const unsigned limit = SEC_Limit(LIMIT_SIGNAL);
    const char* description = s_splitWord(line);
    MselRow* row = static_cast<MselRow*>(SEC_NewRecord(&s_frame, sizeof(MselRow)));
    if (row == nullptr) return 0;
    row->line = PARSE_GetLineNum();
    if (!SEC_CopyName(row->model, line, limit))
        ERRLOG_LineErrorNew(1107, line, s_open->name, limit);
    SEC_CopyName(row->description, description, SIZE_SELECTION);
    if (*description == '\0') ERRLOG_LineWarnNew(1108, row->model, s_open->name);
    if (!SEC_SetAdd(&s_models, row->model)) ERRLOG_LineErrorNew(1109, row->model, s_open->name);
    SEC_Append(&s_open->rows, &s_tail, row);
    return 1;
}

int MSEL_ReceiveLine(int kind, int code, char* line)
{
    CMN_ASSERT(line != nullptr);
    if (!SEC_Receives(&s_frame, __LINE__, kind, s_open)) return 0;
    if (code != KEY_MODEL_SELECTOR) {
        SEC_UnknownKeyword(&s_frame, __LINE__);
        return 0;
    }
    return kind == LINE_KEYWORD ? s_keywordLine(SEC_Argument(line)) : s_dataLine(line);
}

int MSEL_Fini(int nextCode)
{
    if (nextCode != NOT_KEY) MSEL_Close();
    return 1;
}

void MSEL_FreeList(Msel* head)
{
    SEC_FreeList(head, s_free);
}

int MSEL_AddLink(Msel** head, Msel* item)
{
    CMN_ASSERT(head != nullptr && item != nullptr);
    return SEC_AddLink(head, item);
}

Msel* MSEL_FindByName(Msel* head, const char* name)
{
    CMN_ASSERT(name != nullptr);
    return SEC_FindByName(head, name);
}
