/* The reader of IBIS-family files. INIT, PARSE, TEST and FINI in this order; one file at a time. */
#ifndef IBISPARSER_PARSE_H
#define IBISPARSER_PARSE_H

#include "IbisParser/cmn.h"
#include "IbisParser/keyword.h"

IBIS_BEGIN_DECLS

extern int geFileVersion; /* version class of the file being read: 2, 3, 4 or 5 */
extern int gbContinue;    /* 1 while an item that must end with "/" is open */
extern unsigned long gulLineNum; /* line being read, 1 for the first */
extern char gsFileName[CMN_PATH_MAX + 1];

unsigned long PARSE_GetLineNum(void);
/* Copies the name of the file being read; buf holds 1025 characters. */
char* PARSE_GetFileName(char* buf);

IBIS_END_DECLS

#endif
