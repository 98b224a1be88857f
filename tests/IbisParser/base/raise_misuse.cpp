// Each case must not compile; the build calls the compiler with CASE set and looks for its
// complaint.
#include "IbisParser/base/raise.h"

static const struct {
    const char* name;
    ErrNumber<const char*, const char*> column;
} s_table[] = {
#if CASE == 4
    {"two texts", 1911},
#endif
    {"none", 0},
};

void RaiseMisuse(const char* name, double value, unsigned number)
{
    (void)s_table, (void)name, (void)value, (void)number;
#if CASE == 1
    ERRLOG_LineErrorNew(9999, name);
#elif CASE == 2
    ERRLOG_LineErrorNew(1911, value);
#elif CASE == 3
    ERRLOG_LineErrorNew(1911);
#elif CASE == 5
    ERRLOG_LineErrorNew(number, name);
#elif CASE == 6
    ERRLOG_LineErrorNew(s_table[0].column, name);
#else
    ERRLOG_LineErrorNew(1911, name);
#endif
}
