// [Receiver Thresholds].
#include "IbisParser/rcvth.h"

#include "IbisParser/base/raise.h"
#include "IbisParser/krng.h"
#include "IbisParser/read/model/mdl.h"
#include "IbisParser/read/model/rcvth.h"

static const char s_Module[] = "IbisParser/rcvth";

// clang-format off
const RcvThRow rcvthItems[TH_COUNT] = {
    { "Vth",                   TH_SET_SINGLE_ENDED, true,  TH_ANY_SIGN },
    { "Vth_min",               TH_NO_SET,           false, TH_ANY_SIGN },
    { "Vth_max",               TH_NO_SET,           false, TH_ANY_SIGN },
    { "Vinh_ac",               TH_SET_SINGLE_ENDED, true,  TH_POSITIVE },
    { "Vinh_dc",               TH_SET_SINGLE_ENDED, true,  TH_POSITIVE },
    { "Vinl_ac",               TH_SET_SINGLE_ENDED, true,  TH_NEGATIVE },
    { "Vinl_dc",               TH_SET_SINGLE_ENDED, true,  TH_NEGATIVE },
    { "Tslew_ac",              TH_SET_SINGLE_ENDED, false, TH_POSITIVE },
    { "Threshold_sensitivity", TH_NO_SET,           false, TH_ANY_SIGN },
    { "Vcross_low",            TH_SET_DIFFERENTIAL, true,  TH_ANY_SIGN },
    { "Vcross_high",           TH_SET_DIFFERENTIAL, true,  TH_ANY_SIGN },
    { "Vdiff_ac",              TH_SET_DIFFERENTIAL, true,  TH_POSITIVE },
    { "Vdiff_dc",              TH_SET_DIFFERENTIAL, true,  TH_POSITIVE },
    { "Tdiffslew_ac",          TH_SET_DIFFERENTIAL, false, TH_POSITIVE },
};

const RcvThSupplyRow rcvthSupplies[TH_SUPPLIES] = {
    { "Power_clamp_ref", TH_SUPPLY_POWER_CLAMP, &Mdl::powerClampRef, true  },
    { "Gnd_clamp_ref",   TH_SUPPLY_GND_CLAMP,   &Mdl::gndClampRef,   true  },
    { "Pullup_ref",      TH_SUPPLY_PULLUP,      &Mdl::pullupRef,     true  },
    { "Pulldown_ref",    TH_SUPPLY_PULLDOWN,    &Mdl::pulldownRef,   true  },
    { "Ext_ref",         TH_SUPPLY_EXTERNAL,    &Mdl::externalRef,   false },
};
// clang-format on

namespace {

const char Supply[] = "Reference_supply";

void setSupply(RcvTh* thresholds, const char* word)
{
    if (thresholds->referenceSupply != TH_SUPPLY_UNSET) {
        ERRLOG_LineErrorNew(1911, Supply);
        return;
    }
    const auto* row = SEC_FindRow(rcvthSupplies, word);
    if (row == nullptr)
        ERRLOG_LineErrorNew(2004, word);
    else
        thresholds->referenceSupply = row->supply;
}

int receive(RcvTh* thresholds, const CmnArgs* args)
{
    const char* name = args->nStored > 0 ? args->argv[0] : "";
    const auto* item = SEC_FindRow(rcvthItems, name);
    const bool isSupply = item == nullptr && CMN_StrSameIC(name, Supply);
    if (item == nullptr && !isSupply) {
        ERRLOG_LineErrorNew(2002, name);
        return 0;
    }
    if (args->argc != 2) ERRLOG_LineErrorNew(2003, item ? item->name : Supply, args->argc - 1);
    if (args->nStored < 2) return 0;
    if (isSupply)
        setSupply(thresholds, args->argv[1]);
    else
        MDL_SetSingle(&thresholds->item[item - rcvthItems], args, item->name);
    return 1;
}

}  // namespace

int RCVTH_CountGiven(const RcvTh* thresholds)
{
    int given = thresholds->referenceSupply != TH_SUPPLY_UNSET;
    for (const RngSingle& item : thresholds->item)
        given += item.state != CELL_ABSENT;
    return given;
}

int RCVTH_KeywordLine(Mdl* model)
{
    CMN_ASSERT(model != nullptr && model->thresholds == nullptr);
    model->thresholds = static_cast<RcvTh*>(SEC_NewPart(2001, s_Module, __LINE__, sizeof(RcvTh)));
    return model->thresholds != nullptr;
}

int RCVTH_ReceiveLine(Mdl* model, const char* line)
{
    CMN_ASSERT(model != nullptr && line != nullptr);
    if (model->thresholds == nullptr) return 0;
    SecArgs args;
    if (!KRNG_Split(line, 2, &args)) {
        ERRLOG_LineBugNew(2000, "Receiver Thresholds", s_Module, __LINE__);
        return 0;
    }
    return receive(model->thresholds, &args);
}

int RCVTH_Fini(Mdl* model)
{
    CMN_ASSERT(model != nullptr);
    if (model->thresholds == nullptr) return 0;
    const int given = RCVTH_CountGiven(model->thresholds);
    if (given == 0) ERRLOG_LineErrorNew(2005, model->name);
    return given > 0;
}

void RCVTH_Free(RcvTh* thresholds)
{
    if (thresholds != nullptr) SEC_FreeRecord(thresholds);
}
