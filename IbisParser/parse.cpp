// The reader of IBIS-family files.
#include "IbisParser/parse.h"

#include <cstring>

int geFileVersion = 0;
int gbContinue = 0;
unsigned long gulLineNum = 0;
char gsFileName[CMN_PATH_MAX + 1] = "";

unsigned long PARSE_GetLineNum(void)
{
    return gulLineNum;
}

char* PARSE_GetFileName(char* buf)
{
    return std::strcpy(buf, gsFileName);
}
