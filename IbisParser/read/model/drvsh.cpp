// [Driver Schedule].
#include "IbisParser/drvsh.h"

#include "IbisParser/base/raise.h"
#include "IbisParser/dly.h"
#include "IbisParser/read/model/mdl.h"

static const char s_Module[] = "IbisParser/drvsh";

const char* const drvshDelayNames[DELAY_COUNT] = {"Rise_on", "Rise_off", "Fall_on", "Fall_off"};

// The link that ends the list of the model that is being read.
static DrvSh** s_tail = nullptr;

static int s_receive(Mdl* model, const CmnArgs* args)
{
    if (args->argc != DELAY_COUNT + 1) {
        ERRLOG_LineErrorNew(3002, args->argc);
        return 0;
    }
    auto* row = static_cast<DrvSh*>(SEC_NewPart(3001, s_Module, __LINE__, sizeof(DrvSh)));
    if (row == nullptr) return 0;
    const unsigned limit = SEC_Limit(LIMIT_SIGNAL);
    if (!SEC_CopyName(row->model, args->argv[0], limit))
        ERRLOG_LineErrorNew(3003, args->argv[0], static_cast<int>(limit));
    for (int i = 0; i < DELAY_COUNT; ++i)
        DLY_ParseNotNegative(args->argv[i + 1], drvshDelayNames[i], row->model,
                             &row->delay[i].value, &row->delay[i].state);
    SEC_Append(&model->schedule, &s_tail, row);
    return 1;
}

int DRVSH_KeywordLine(Mdl* model)
{
    CMN_ASSERT(model != nullptr && model->schedule == nullptr);
    s_tail = nullptr;
    return 1;
}

int DRVSH_ReceiveLine(Mdl* model, const char* line)
{
    CMN_ASSERT(model != nullptr && line != nullptr);
    SecArgs args;
    if (!CMN_ArgParse(line, DELAY_COUNT + 1, &args)) {
        ERRLOG_LineBugNew(3000, "Driver Schedule", s_Module, __LINE__);
        return 0;
    }
    return s_receive(model, &args);
}

int DRVSH_Fini(Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    s_tail = nullptr;
    if (model->schedule == nullptr) ERRLOG_LineErrorNew(3004, model->name);
    return model->schedule != nullptr;
}

void DRVSH_FreeList(DrvSh* head)
{
    SEC_FreeList(head, SEC_FreeRecord<DrvSh>);
}
