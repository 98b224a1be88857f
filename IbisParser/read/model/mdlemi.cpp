// [Begin EMI Model].
#include "IbisParser/mdlemi.h"

#include "IbisParser/base/raise.h"
#include "IbisParser/krng.h"
#include "IbisParser/read/model/mdl.h"

static const char s_Module[] = "IbisParser/mdlemi";

static const char* const s_types[] = {"Ferrite", "Not_a_ferrite", nullptr};  // MdlEmiType
static const char* const s_domains[] = {"Digital", "Analog", nullptr};       // MdlEmiDomain

static const struct {
    const char* name;
    int MdlEmi::*value;
    const char* const* words;
    ErrNumber<const char*> unknownWord;
} s_items[] = {
    {"Model_emi_type", &MdlEmi::type, s_types, 4803},
    {"Model_Domain", &MdlEmi::domain, s_domains, 4804},
};

static int s_receive(MdlEmi* emi, const CmnArgs* args)
{
    const char* name = args->nStored > 0 ? args->argv[0] : "";
    const auto* item = SEC_FindRow(s_items, name);
    if (item == nullptr) {
        ERRLOG_LineErrorNew(4801, name);
        return 0;
    }
    const unsigned bit = 1u << (item - s_items);
    if ((emi->given & bit) != 0) {
        ERRLOG_LineErrorNew(4802, item->name);
        return 0;
    }
    emi->given |= bit;
    const char* text = args->nStored > 1 ? args->argv[1] : "";
    emi->*(item->value) = args->argc == 2 ? KRNG_Word(text, item->words) : 0;
    if (emi->*(item->value) == 0) ERRLOG_LineErrorNew(item->unknownWord, text);
    return 1;
}

int MDLEMI_Begin(Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    if (model->emi == nullptr) {
        void* block = nullptr;
        if (!CMN_malloc(&block, sizeof(MdlEmi))) return 0;
        model->emi = static_cast<MdlEmi*>(block);
    }
    model->emi->open = 1;
    return 1;
}

int MDLEMI_ReceiveLine(Mdl* model, const char* line)
{
    CMN_ASSERT(model != nullptr && line != nullptr);
    if (model->emi == nullptr) return 0;
    SecArgs args;
    if (!KRNG_Split(line, 2, &args)) {
        ERRLOG_LineBugNew(4800, "Begin EMI Model", s_Module, __LINE__);
        return 0;
    }
    return s_receive(model->emi, &args);
}

int MDLEMI_End(Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    MdlEmi* emi = model->emi;
    if (emi == nullptr || !emi->open) {
        ERRLOG_LineErrorNew(4806);
        return 0;
    }
    emi->open = 0;
    if (emi->given == 0) ERRLOG_LineNoteNew(4808, model->name);
    const MdlTypeInfo* info = MDL_TypeInfo(model->type);
    if (emi->type == MDLEMI_FERRITE && info != nullptr && info->group != MDL_GROUP_SERIES &&
        info->group != MDL_GROUP_SERIES_SWITCH)
        ERRLOG_LineWarnNew(4807, model->name, info->name);
    return 1;
}

int MDLEMI_Fini(Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    if (model->emi == nullptr || !model->emi->open) return 1;
    ERRLOG_LineErrorNew(4805, model->name);
    return MDLEMI_End(model);
}

void MDLEMI_Free(MdlEmi* emi)
{
    if (emi != nullptr) SEC_FreeRecord(emi);
}
