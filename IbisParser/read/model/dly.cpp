// Delays of driver schedules and differential pins.
#include "IbisParser/dly.h"

#include <cmath>

#include "IbisParser/base/raise.h"
#include "IbisParser/cmn.h"

static const char s_Module[] = "IbisParser/dly";

int DLY_Parse(const char* text, const char* label, const char* owner, double* value, int* state)
{
    CMN_ASSERT(text != nullptr && label != nullptr && owner != nullptr);
    CMN_ASSERT(value != nullptr && state != nullptr);
    double delay = 0.0;
    int isNA = 0;
    const int result = CMN_Get_ValueOrNA(text, &delay, &isNA);
    if (result == 0 || !std::isfinite(delay)) {
        ERRLOG_LineErrorNew(2100, label, text, owner);
        return 0;
    }
    if (result == 2) ERRLOG_LineWarnNew(1910, label, "delay", text);
    *value = delay;
    *state = isNA ? CELL_NA : CELL_NUMBER;
    return 1;
}

int DLY_ParseNotNegative(const char* text, const char* label, const char* owner, double* value,
                         int* state)
{
    if (!DLY_Parse(text, label, owner, value, state)) return 0;
    if (*state == CELL_NUMBER && *value < 0.0) ERRLOG_LineErrorNew(2101, label, *value, owner);
    return 1;
}
