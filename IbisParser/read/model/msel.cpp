// [Model Selector]: the models that a pin can be given.
#include "IbisParser/msel.h"

#include "IbisParser/base/raise.h"
#include "IbisParser/read/model/msel.h"
#include "IbisParser/store/life.h"

static const char s_Module[] = "IbisParser/msel";
static const SecFrame s_frame = {s_Module, 1100, 1101, 1102, 1103, 1104, 1105};

static struct MselReading : SecReading<Msel> {
    MselRow** tail = nullptr;  // end of its rows
    SecSet models;             // in its rows
} s_reading;

// Ends the first blank-separated word of text and returns what follows it.
static char* s_splitWord(char* text)
{
    text += std::strcspn(text, " \t");
    if (*text != '\0') *text++ = '\0';
    return text + std::strspn(text, " \t");
}

static int s_keywordLine(Msel* selector, char* text)
{
    const unsigned limit = SEC_Limit(LIMIT_SIGNAL);
    s_splitWord(text);
    if (*text == '\0') ERRLOG_LineErrorNew(1913, "Model Selector");
    if (!SEC_CopyName(selector->name, text, limit)) ERRLOG_LineErrorNew(1106, text, limit);
    return CMN_ReservedWordErr(text);
}

static int s_dataLine(Msel* selector, char* line)
{
    const unsigned limit = SEC_Limit(LIMIT_SIGNAL);
    const char* description = s_splitWord(line);
    MselRow* row = static_cast<MselRow*>(SEC_NewRecord(&s_frame, sizeof(MselRow)));
    if (row == nullptr) return 0;
    row->line = PARSE_GetLineNum();
    if (!SEC_CopyName(row->model, line, limit))
        ERRLOG_LineErrorNew(1107, line, selector->name, limit);
    SEC_CopyName(row->description, description, SIZE_SELECTION);
    if (*description == '\0') ERRLOG_LineWarnNew(1108, row->model, selector->name);
    if (!SEC_SetAdd(&s_reading.models, row->model))
        ERRLOG_LineErrorNew(1109, row->model, selector->name);
    SEC_Append(&selector->rows, &s_reading.tail, row);
    return 1;
}

static void s_end(Msel* selector)
{
    if (selector->rows == nullptr) ERRLOG_LineErrorNew(1110, selector->name);
}

static void s_release(Msel* selector)
{
    SEC_FreeList(selector->rows, SEC_FreeRecord<MselRow>);
    SEC_FreeRecord(selector);
}

static const SecKeyword<Msel> s_keywords[] = {
    {KEY_MODEL_SELECTOR, SEC_TEXT, s_keywordLine, s_dataLine},
};

static const SecLife<MselReading> s_life = {
    .reading = &s_reading,
    .frame = s_frame,
    .opener = KEY_MODEL_SELECTOR,
    .subject = SUBJECT_SELECTOR,
    .rows = s_keywords,
    .add = IBIS_AddMsel,
    .release = s_release,
    .end = s_end,
};

int MSEL_Init()
{
    return s_life.Init();
}

int MSEL_ReceiveLine(int kind, int code, char* line)
{
    return s_life.ReceiveLine(kind, code, line);
}

int MSEL_Fini(int nextCode)
{
    return s_life.Fini(nextCode);
}

void MSEL_Close()
{
    s_life.Close();
}

void MSEL_FreeList(Msel* head)
{
    s_life.FreeList(head);
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
