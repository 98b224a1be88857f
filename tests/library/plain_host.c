/* A C program against the shared library: exported data is the library's own, also when the
 * program's copy of it is set. */
#include <stdio.h>

#include "IbisParser/errlog.h"

static int failures = 0;

static void Expect(int ok, const char* what)
{
    if (ok) return;
    fprintf(stderr, "failed: %s\n", what);
    ++failures;
}

int main(void)
{
    FILE* log = tmpfile();
    if (log == NULL) return 2;
    ERRLOG_SetOutputFile(log);

    ERRLOG_Cautionx("%s", "seen");
    Expect(gulCaution_cnt == 1, "a caution is counted");
    gbSuppressCautions = 1;
    ERRLOG_Cautionx("%s", "not seen");
    Expect(gulCaution_cnt == 1, "a suppressed caution is not counted");
    Expect(ftell(log) == (long)sizeof "CAUTION - seen\n" - 1, "only the first caution is written");

    fclose(log);
    return failures == 0 ? 0 : 1;
}
