// [Begin EMI Component], [Pin EMI] and [Pin Domain EMI].
#include "IbisParser/cmpntemi.h"

#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/read/component/cmpnt.h"

static const char s_Module[] = "IbisParser/cmpntemi";
static const PartFailure s_failure = {s_Module, 800};

enum { PIN_COLUMNS = 3, DOMAIN_COLUMNS = 2, WHOLE = 100 };

static const struct EmiRow {
    const char* name;
    RngSingle CmpntEmi::*slot;  // null: Domain
} s_rows[] = {
    {"Domain", nullptr},
    {"Cpd", &CmpntEmi::Cpd},
    {"C_Heatsink_gnd", &CmpntEmi::C_Heatsink_gnd},
    {"C_Heatsink_float", &CmpntEmi::C_Heatsink_float},
};

int CMPNTEMI_Begin(Cmpnt* component, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    if (component->emi == nullptr)
        component->emi =
            static_cast<CmpntEmi*>(SEC_NewPart(801, s_Module, __LINE__, sizeof(CmpntEmi)));
    if (component->emi != nullptr) component->emi->ended = 0;
    return component->emi != nullptr;
}

int CMPNTEMI_KeywordLine(Cmpnt* component, int code, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    // The column headers say nothing that the order does not, but they must be there.
    if (*line == '\0') ERRLOG_LineWarnNew(5900, SEC_KeywordName(code));
    return component->emi != nullptr && (code == KEY_PIN_EMI || code == KEY_PIN_DOMAIN_EMI);
}

static void s_setDomain(CmpntEmi* emi, const char* text)
{
    static const char* const words[] = {"Digital", "Analog", "Digital_analog", nullptr};
    if (emi->domain != EMI_DOMAIN_UNSET) {
        ERRLOG_LineErrorNew(803, "Domain");
        return;
    }
    emi->domain = KRNG_Word(text, words);
    if (emi->domain == EMI_DOMAIN_UNSET) ERRLOG_LineErrorNew(804, text);
}

static void s_setValue(CmpntEmi* emi, const EmiRow* row, const CmnArgs* args)
{
    RngSingle* slot = &(emi->*row->slot);
    if (slot->state != CELL_ABSENT) {
        ERRLOG_LineErrorNew(803, row->name);
        return;
    }
    if (!KRNG_SetSingle(slot, args, row->name)) return;
    if (slot->value < 0.0) ERRLOG_LineErrorNew(806, row->name);
    const int isHeatsink = slot != &emi->Cpd;
    if (isHeatsink && emi->C_Heatsink_gnd.state != CELL_ABSENT &&
        emi->C_Heatsink_float.state != CELL_ABSENT)
        ERRLOG_LineErrorNew(805);
}

static void s_subParameter(CmpntEmi* emi, const char* line)
{
    SecArgs args;
    if (!KRNG_Split(line, 2, &args)) {
        ERRLOG_LineBugNew(800, "Begin EMI Component", s_Module, __LINE__);
        return;
    }
    const EmiRow* row = args.nStored > 0 ? SEC_FindRow(s_rows, args.argv[0]) : nullptr;
    if (row == nullptr)
        ERRLOG_LineErrorNew(802, args.nStored > 0 ? args.argv[0] : line);
    else if (row->slot == nullptr)
        s_setDomain(emi, args.nStored > 1 ? args.argv[1] : "");
    else
        s_setValue(emi, row, &args);
}

static void s_copyDomain(char* dest, const char* text)
{
    if (!SEC_CopyName(dest, text, SIZE_GROUP)) ERRLOG_LineErrorNew(812, text, SIZE_GROUP);
}

static void s_pinLine(Cmpnt* component, const CmpntItems* args)
{
    CmpntReading* reading = component->reading;
    EmiPin* pin = static_cast<EmiPin*>(SEC_NewPart(801, s_Module, __LINE__, sizeof(EmiPin)));
    if (pin == nullptr) return;
    const PlaceScope at(SUBJECT_PIN, pin->name, {0, 0});
    pin->line = PARSE_GetLineNum();
    SEC_CopyName(pin->name, args->argv[0], SIZE_PIN);
    if (!CMPNT_HasPin(component, args->argv[0])) ERRLOG_LineErrorNew(810, args->argv[0]);
    if (!SEC_SetAdd(&reading->emiPins, args->argv[0])) ERRLOG_LineErrorNew(811, args->argv[0]);
    if (!CMN_StrSameIC(args->argv[1], "NA")) s_copyDomain(pin->domain, args->argv[1]);
    double value = 0.0;
    int isNA = 0;
    const int result = CMN_Get_ValueOrNA(args->argv[2], &value, &isNA);
    // The comparison is false for NaN as well.
    if (result == 0 || (!isNA && !(value > 0.0 && value < HUGE_VAL)))
        ERRLOG_LineErrorNew(813, args->argv[2], pin->name);
    else
        pin->clockDiv = {value, isNA ? CELL_NA : CELL_NUMBER};
    SEC_Append(&component->emi->pins, &reading->emiPinTail, pin);
}

static void s_domainLine(Cmpnt* component, const CmpntItems* args)
{
    CmpntReading* reading = component->reading;
    EmiPinDomain* domain =
        static_cast<EmiPinDomain*>(SEC_NewPart(801, s_Module, __LINE__, sizeof(EmiPinDomain)));
    if (domain == nullptr) return;
    const PlaceScope at(SUBJECT_DOMAIN, domain->name, {0, 0});
    domain->line = PARSE_GetLineNum();
    s_copyDomain(domain->name, args->argv[0]);
    if (!SEC_SetAdd(&reading->emiDomains, domain->name)) ERRLOG_LineErrorNew(814, domain->name);
    int percent = 0;
    if (SEC_ReadCount(args->argv[1], &percent) && percent <= WHOLE)
        domain->percent = percent;
    else {
        domain->percent = -1;
        ERRLOG_LineErrorNew(815, args->argv[1], domain->name);
    }
    SEC_Append(&component->emi->domains, &reading->emiDomainTail, domain);
}

int CMPNTEMI_ReceiveLine(Cmpnt* component, int code, const char* line)
{
    CMN_ASSERT(component != nullptr && line != nullptr);
    if (component->emi == nullptr) return 0;
    if (code == KEY_BEGIN_EMI_COMPONENT) {
        s_subParameter(component->emi, line);
        return 1;
    }
    const int isPin = code == KEY_PIN_EMI;
    const int columns = isPin ? PIN_COLUMNS : DOMAIN_COLUMNS;
    CmpntItems args;
    if (!CMPNT_SplitLine(&s_failure, __LINE__, SEC_KeywordName(code), line, PIN_COLUMNS, &args))
        return 0;
    if (args.argc != columns)
        ERRLOG_LineErrorNew(809, SEC_KeywordName(code), args.argc, columns);
    else if (isPin)
        s_pinLine(component, &args);
    else
        s_domainLine(component, &args);
    return 1;
}

int CMPNTEMI_End(Cmpnt* component)
{
    CMN_ASSERT(component != nullptr);
    if (component->emi != nullptr) component->emi->ended = 1;
    return component->emi != nullptr;
}

int CMPNTEMI_Fini(Cmpnt* component)
{
    CMN_ASSERT(component != nullptr);
    ERRLOG_LineErrorNew(807, component->name);
    return 1;
}

void CMPNTEMI_Free(CmpntEmi* emi)
{
    if (emi == nullptr) return;
    SEC_FreeList(emi->pins, SEC_FreeRecord<EmiPin>);
    SEC_FreeList(emi->domains, SEC_FreeRecord<EmiPinDomain>);
    SEC_FreeRecord(emi);
}
