// [Add Submodel].
#include "IbisParser/addsub.h"

#include "IbisParser/base/raise.h"
#include "IbisParser/krng.h"
#include "IbisParser/read/model/mdl.h"

static const char s_Module[] = "IbisParser/addsub";

// In the order of AddSubMode.
static const char* const s_modes[] = {"Driving", "Non-Driving", "All", nullptr};

// The first row of each submodel of the model that is being read.
static IdxTable s_byName = {nullptr, 0, 0};

static int s_receive(Mdl* model, const CmnArgs* args)
{
    if (args->argc != 2) {
        ERRLOG_LineErrorNew(2702, args->argc);
        return 0;
    }
    auto* row = static_cast<AddSub*>(SEC_NewPart(2701, s_Module, __LINE__, sizeof(AddSub)));
    if (row == nullptr) return 0;
    const unsigned limit = SEC_Limit(LIMIT_SUBMODEL);
    if (!SEC_CopyName(row->submodel, args->argv[0], limit))
        ERRLOG_LineErrorNew(2704, args->argv[0], static_cast<int>(limit));
    row->mode = KRNG_Word(args->argv[1], s_modes);
    if (row->mode == 0) ERRLOG_LineErrorNew(2703, args->argv[1]);
    SEC_AddLink(&model->addSubs, row);

    void** first = nullptr;
    if (!IDX_SlotName(&s_byName, row->submodel, &first)) return 0;
    if (*first == nullptr) *first = row;
    AddSub* earlier = static_cast<AddSub*>(*first);
    if (earlier != row && (earlier->allModes & row->mode) != 0)
        ERRLOG_LineErrorNew(2705, row->submodel, model->name);
    earlier->allModes |= row->mode;
    return 1;
}

int ADDSUB_KeywordLine(Mdl* model)
{
    CMN_ASSERT(model != nullptr && model->addSubs == nullptr);
    IDX_Clear(&s_byName);
    return 1;
}

int ADDSUB_ReceiveLine(Mdl* model, const char* line)
{
    CMN_ASSERT(model != nullptr && line != nullptr);
    SecArgs args;
    if (!CMN_ArgParse(line, 2, &args)) {
        ERRLOG_LineBugNew(2700, "Add Submodel", s_Module, __LINE__);
        return 0;
    }
    return s_receive(model, &args);
}

int ADDSUB_Fini(Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    IDX_Clear(&s_byName);
    if (model->addSubs == nullptr) ERRLOG_LineErrorNew(2706, model->name);
    return model->addSubs != nullptr;
}

void ADDSUB_FreeList(AddSub* head)
{
    IDX_Clear(&s_byName);
    SEC_FreeList(head, SEC_FreeRecord<AddSub>);
}

const char* ADDSUB_ModeName(int mode)
{
    return mode >= ADDSUB_DRIVING && mode <= ADDSUB_ALL ? s_modes[mode - 1] : nullptr;
}
