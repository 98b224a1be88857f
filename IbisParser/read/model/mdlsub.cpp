// mdl: the sub-parameters that stand directly under [Model].
#include <cctype>

#include "IbisParser/base/clocale.h"
#include "IbisParser/base/corner.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/base/token.h"
#include "IbisParser/krng.h"
#include "IbisParser/read/model/mdl.h"

static const char s_Module[] = "IbisParser/mdlsub";

namespace {

constexpr double LargestCapacitance = 20e-12;  // of a pad and die, farad

struct Word {
    const char* name;
    int value;
};
const Word polarities[] = {{"Non-Inverting", MDL_NON_INVERTING}, {"Inverting", MDL_INVERTING}};
const Word enables[] = {{"Active-High", MDL_ACTIVE_HIGH}, {"Active-Low", MDL_ACTIVE_LOW}};

// What differs from the row it was found by in case only.
void noteSpelling(const char* found, const char* right)
{
    if (std::strcmp(found, right) != 0) ERRLOG_LineWarnNew(107, found, right);
}

void setType(Mdl* model, const char* word)
{
    const MdlTypeInfo* info = MDL_TypeByName(word);
    if (info == nullptr) {
        ERRLOG_LineErrorNew(109, word, model->name);
        return;
    }
    noteSpelling(word, info->name);
    // The differential types came in the middle of class 4.
    if (info->since > SEC_Version())
        ERRLOG_LineErrorNew(110, info->name,
                            info->differential ? "4.1" : VERSION_Since(info->since));
    model->type = info->type;
}

template <std::size_t n>
void setWord(const Word (&words)[n], ErrNumber<const char*> number, const char* text, int* out)
{
    const Word* word = SEC_FindRow(words, text);
    if (word == nullptr) {
        ERRLOG_LineErrorNew(number, text);
        return;
    }
    noteSpelling(text, word->name);
    *out = word->value;
}

void setPolarity(Mdl* model, const char* word)
{
    setWord(polarities, 111, word, &model->polarity);
}

void setEnable(Mdl* model, const char* word)
{
    setWord(enables, 112, word, &model->enable);
}

// One of word, single and range is set.
struct SubParameter {
    const char* name;
    int since;
    void (*word)(Mdl* model, const char* word);
    RngSingle Mdl::*single;
    RngRange* Mdl::*range;
};

// clang-format off
const SubParameter subParameters[] = {
    { "Model_type",         2, setType,     nullptr,         nullptr                   },
    { "Polarity",           2, setPolarity, nullptr,         nullptr                   },
    { "Enable",             2, setEnable,   nullptr,         nullptr                   },
    { "Vinl",               2, nullptr,       &Mdl::Vinl,      nullptr                   },
    { "Vinh",               2, nullptr,       &Mdl::Vinh,      nullptr                   },
    { "C_comp",             2, nullptr,       nullptr,         &Mdl::C_comp              },
    { "C_comp_pullup",      4, nullptr,       nullptr,         &Mdl::C_comp_pullup       },
    { "C_comp_pulldown",    4, nullptr,       nullptr,         &Mdl::C_comp_pulldown     },
    { "C_comp_power_clamp", 4, nullptr,       nullptr,         &Mdl::C_comp_power_clamp  },
    { "C_comp_gnd_clamp",   4, nullptr,       nullptr,         &Mdl::C_comp_gnd_clamp    },
    { "Vmeas",              2, nullptr,       &Mdl::Vmeas,     nullptr                   },
    { "Cref",               2, nullptr,       &Mdl::Cref,      nullptr                   },
    { "Rref",               2, nullptr,       &Mdl::Rref,      nullptr                   },
    { "Vref",               2, nullptr,       &Mdl::Vref,      nullptr                   },
    { "Rref_diff",          4, nullptr,       &Mdl::Rref_diff, nullptr                   },
    { "Cref_diff",          4, nullptr,       &Mdl::Cref_diff, nullptr                   },
};
// clang-format on

// A bit for each row that occurred in the model that is being read.
unsigned given = 0;

void setCapacitance(const Mdl* model, RngRange** slot, const char* name, const char* text)
{
    const bool isFirst = *slot == nullptr;
    KRNG_SetRange(slot, text, name);
    if (!isFirst) return;
    for (int corner = 0; corner < CORNER_COUNT; ++corner) {
        const RngSingle cell = MDL_Cell(*slot, corner);
        if (MDL_IsNumber(cell) && cell.value < 0.0)
            ERRLOG_LineErrorNew(126, name, model->name, CORNER_Short(corner), cell.value);
    }
    const RngSingle typ = MDL_Cell(*slot, CORNER_TYP);
    const RngSingle min = MDL_Cell(*slot, CORNER_MIN);
    const RngSingle max = MDL_Cell(*slot, CORNER_MAX);
    if (MDL_IsNumber(typ) && typ.value > LargestCapacitance)
        ERRLOG_LineWarnNew(127, name, model->name, typ.value);
    if (MDL_IsNumber(min) && MDL_IsNumber(max) && min.value > max.value)
        ERRLOG_LineNoteNew(128, name, model->name, min.value, max.value);
}

void setWordOnce(Mdl* model, const SubParameter& row, bool isFirst, const CmnArgs* args)
{
    if (!isFirst)
        ERRLOG_LineErrorNew(108, row.name, model->name);
    else if (args->nStored > 1)
        row.word(model, args->argv[1]);
}

int receive(Mdl* model, const CmnArgs* args, const char* line)
{
    const char* name = args->nStored > 0 ? args->argv[0] : "";
    const SubParameter* row = SEC_FindRow(subParameters, name);
    if (row == nullptr) {
        ERRLOG_LineErrorNew(106, name);
        return 0;
    }
    noteSpelling(name, row->name);
    if (row->since > SEC_Version()) ERRLOG_LineErrorNew(114, row->name, VERSION_Since(row->since));
    const int isFirst = SEC_MarkFound(&given, static_cast<int>(row - subParameters));
    if (row->range != nullptr) {
        setCapacitance(model, &(model->*(row->range)), row->name, KRNG_Values(line));
        return 1;
    }
    if (args->argc != 2) ERRLOG_LineErrorNew(113, row->name, 1, args->argc - 1);
    if (row->word != nullptr)
        setWordOnce(model, *row, isFirst != 0, args);
    else if (args->nStored > 1)
        MDL_SetSingle(&(model->*(row->single)), args, row->name);
    return 1;
}

// Items of a value line are set off by these.
bool endsItem(char c)
{
    return c == '\0' || c == '=' || c == '/' || TOKEN_IsBlank(c);
}

}  // namespace

int MDL_HasPartCapacitance(const Mdl* model)
{
    return model->C_comp_pullup != nullptr || model->C_comp_pulldown != nullptr ||
           model->C_comp_power_clamp != nullptr || model->C_comp_gnd_clamp != nullptr;
}

void MDL_SubParametersBegin()
{
    given = 0;
}

int MDL_TypeWasGiven()
{
    return (given & 1u) != 0;
}

int MDL_SubParameter(Mdl* model, const char* line)
{
    CMN_ASSERT(model != nullptr && line != nullptr);
    SecArgs args;
    if (!KRNG_Split(line, CORNER_COUNT + 1, &args)) return 0;
    return receive(model, &args, line);
}

int MDL_NameLine(char* dest, char* text, int code, VersionLimit limit,
                 ErrNumber<const char*, int> tooLong,
                 ErrNumber<const char*, const char*> furtherText)
{
    char* end = text;
    while (*end != '\0' && !TOKEN_IsBlank(*end))
        ++end;
    const char* rest = TOKEN_SkipBlanks(end);
    SEC_IgnoreText(furtherText, rest, SEC_KeywordName(code));
    *end = '\0';
    if (*text == '\0') {
        ERRLOG_LineErrorNew(1913, SEC_KeywordName(code));
        return 0;
    }
    CMN_ReservedWordErr(text);
    if (!SEC_CopyName(dest, text, SEC_Limit(limit)))
        ERRLOG_LineErrorNew(tooLong, text, static_cast<int>(SEC_Limit(limit)));
    return 1;
}

int MDL_SetSingle(RngSingle* slot, const CmnArgs* args, const char* name)
{
    const int done = KRNG_SetSingle(slot, args, name);
    if (slot->state == CELL_ABSENT) slot->state = CELL_NA;
    return done;
}

void MDL_CheckScale(const char* line, int skip)
{
    if (std::strchr(line, 'K') == nullptr) return;
    for (const char* item = line; *item != '\0';) {
        if (endsItem(*item)) {
            ++item;
            continue;
        }
        const char* end = item;
        while (!endsItem(*end))
            ++end;
        const bool isNumber = std::isdigit(static_cast<unsigned char>(*item)) || *item == '.' ||
                              *item == '-' || *item == '+';
        if (skip > 0) {
            --skip;
        } else if (isNumber) {
            const char* unit = nullptr;
            const double value = StrtodC(item, &unit);
            if (unit != item && *unit == 'K') {
                char* text = CMN_StrMakeN(item, static_cast<int>(end - item));
                if (text == nullptr) return;
                ERRLOG_LineWarnNew(158, text, value);
                SEC_FreeRecord(text);
            }
        }
        item = end;
    }
}
