/* The reader of IBIS-family files. INIT, PARSE, TEST and FINI in this order; one file at a time. */
#ifndef IBISPARSER_PARSE_H
#define IBISPARSER_PARSE_H

#include "IbisParser/cmn.h"
#include "IbisParser/keyword.h"

IBIS_BEGIN_DECLS

extern unsigned long gulLineNum; /* line being read, 1 for the first */
extern char gsFileName[CMN_PATH_MAX + 1];
extern char gpcComment;              /* comment character, "|" at the start of a file */
extern KeywordCode geCurrentKeyword; /* keyword whose data is being read; NOT_KEY for none */
extern FileType geCurrFileType;
extern int geFileVersion; /* version class: 2 to 5 for IBIS 2.x to 5.0 */
extern int gbIBIS_VerFound;
extern int gbEndFound;
extern int gbInSubModel;
extern int gbContinue; /* set by a section while an item that must end with "/" is open */
extern char* gsBuffer; /* text of the last AMI parameter file, comments removed; null for none */

/* Creates the document store. 1 done, 0 not. */
int INIT(void);
/* Reads a file of a FileType. 1 when it was read to its end, with whatever messages; 0 when it
 * could not be opened or its version is unknown. The file name's extension may be left out. */
int PARSE(const char* name, int fileType);
/* Checks what was read; fileType as in PARSE. A non-zero deep makes the check of a board file read
 * the files that it refers to. */
void TEST(int fileType, int deep);
/* Frees the document and prints the totals. Returns the number of errors. */
int FINI(void);

void PARSE_AllowAnyLineLength(int on);
void PARSE_SuppressBanners(int on);

unsigned long PARSE_GetLineNum(void);
/* Copies the name of the file being read; buf holds 1025 characters. */
char* PARSE_GetFileName(char* buf);
/* Copies the name that the version-2 table gives a keyword code; buf holds 118 characters. A code
 * that this table does not have is reported. */
char* PARSE_GetKeywordStr(int code, char* buf);

IBIS_END_DECLS

#endif
