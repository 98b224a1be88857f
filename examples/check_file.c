/* Reads one IBIS file with the library; the exit code says whether it found errors.
 * Build: cc -I include/quell check_file.c -lQuell_PCIe_Gen2_Tx */
#include <stdio.h>

#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"

int main(int argc, char** argv)
{
    if (argc != 2) {
        fprintf(stderr, "usage: check_file FILE.ibs\n");
        return 2;
    }
    if (!INIT()) return 2;
    const int read = PARSE(argv[1], FILE_IBS);
    if (read) TEST(FILE_IBS, 0);
    const int errors = FINI();
    if (!read) return 2;
    return errors == 0 ? 0 : 1;
}
