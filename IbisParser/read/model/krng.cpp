// Splitting of sub-parameter lines, and the setters of ranges and single values.
#include "IbisParser/krng.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "IbisParser/base/corner.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/base/token.h"

static const char s_Module[] = "IbisParser/krng";

// Takes item i out of the stored items; the count of all items is left alone.
static void s_dropItem(CmnArgs* args, int i)
{
    void* item = args->argv[i];
    CMN_freeSetNull(&item);
    for (; i + 1 < args->nStored; ++i)
        args->argv[i] = args->argv[i + 1];
    args->argv[--args->nStored] = nullptr;
}

int KRNG_Split(const char* line, int max, CmnArgs* args)
{
    CMN_ASSERT(line != nullptr && args != nullptr && max > 0);
    // Every "=" takes a slot until it is dropped.
    if (!CMN_ArgParsePlus(line, 0, '=', args) ||
        !CMN_ArgParsePlus(line, std::max(args->argc, 1), '=', args))
        return 0;
    int equals = 0;
    for (int i = 0; i < args->nStored;) {
        if (std::strcmp(args->argv[i], "=") != 0) {
            ++i;
            continue;
        }
        if (i != 1 || equals > 0) ERRLOG_LineErrorNew(1918);
        ++equals;
        s_dropItem(args, i);
        --args->argc;
    }
    while (args->nStored > max)
        s_dropItem(args, args->nStored - 1);
    return 1;
}

const char* KRNG_Values(const char* line)
{
    CMN_ASSERT(line != nullptr);
    const char* text = TOKEN_SkipBlanks(line);
    while (*text != '\0' && *text != '=' && !TOKEN_IsBlank(*text))
        ++text;
    text = TOKEN_SkipBlanks(text);
    while (*text == '=')
        text = TOKEN_SkipBlanks(text + 1);
    return text;
}

// NA instead of a number that is not finite.
static int s_cleanCell(double* value, int* state)
{
    if (*state != CELL_NUMBER || std::isfinite(*value)) return 1;
    *value = 0.0;
    *state = CELL_NA;
    return 0;
}

int KRNG_CleanRange(RngRange* range, const char* text, const char* name)
{
    CMN_ASSERT(range != nullptr && text != nullptr && name != nullptr);
    const int bad = !s_cleanCell(&range->typ, &range->typState) +
                    !s_cleanCell(&range->min, &range->minState) +
                    !s_cleanCell(&range->max, &range->maxState);
    if (bad > 0) ERRLOG_LineErrorNew(1909, name, text);
    return bad == 0;
}

int KRNG_CleanLine(RngpLine* line, const char* text, const char* name)
{
    CMN_ASSERT(line != nullptr && text != nullptr && name != nullptr);
    const int bad =
        !s_cleanCell(&line->x, &line->xState) + !s_cleanCell(&line->typ, &line->typState) +
        !s_cleanCell(&line->min, &line->minState) + !s_cleanCell(&line->max, &line->maxState);
    if (bad > 0) ERRLOG_LineErrorNew(1909, name, text);
    return bad == 0;
}

int KRNG_SetRange(RngRange** slot, const char* text, const char* name)
{
    CMN_ASSERT(slot != nullptr && text != nullptr && name != nullptr);
    if (*slot != nullptr) {
        ERRLOG_LineErrorNew(1911, name);
        return 0;
    }
    int done = RNG_ParseRange(text, name, slot);
    if (*slot == nullptr) return 0;
    // An absent or unreadable typ was reported with its cell.
    const int typIsNA = (*slot)->typState == CELL_NA;
    if (typIsNA) ERRLOG_LineErrorNew(3300, name);
    done = KRNG_CleanRange(*slot, text, name) && done;
    return done && !typIsNA;
}

int KRNG_ReadCell(const char* text, const char* name, int allowNA, RngSingle* out)
{
    CMN_ASSERT(text != nullptr && name != nullptr && out != nullptr);
    double value = 0.0;
    int isNA = 0;
    const int result =
        allowNA ? CMN_Get_ValueOrNA(text, &value, &isNA) : CMN_Get_Value(text, &value);
    if (result == 0 || !std::isfinite(value)) {
        ERRLOG_LineErrorNew(1909, name, text);
        return 0;
    }
    if (result == 2) ERRLOG_LineWarnNew(1910, name, "Numeric", text);
    *out = {value, isNA ? CELL_NA : CELL_NUMBER};
    return 1;
}

int KRNG_SetSingle(RngSingle* slot, const CmnArgs* args, const char* name)
{
    CMN_ASSERT(slot != nullptr && args != nullptr && name != nullptr);
    if (slot->state != CELL_ABSENT) {
        ERRLOG_LineErrorNew(1911, name);
        return 0;
    }
    if (args->nStored < 2) {
        ERRLOG_LineErrorNew(1913, name);
        return 0;
    }
    PLACE_Remember(&slot->state);
    return KRNG_ReadCell(args->argv[1], name, 0, slot);
}

int KRNG_Word(const char* text, const char* const* list)
{
    CMN_ASSERT(text != nullptr && list != nullptr);
    for (int i = 0; list[i] != nullptr; ++i)
        if (std::strcmp(text, list[i]) == 0) return i + 1;
    for (int i = 0; list[i] != nullptr; ++i)
        if (CMN_StrSameIC(text, list[i])) return i + 1;
    return 0;
}
