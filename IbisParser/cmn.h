/* Common helpers of the parser library: memory, strings, tokens, numbers, files and lines.
 * A bool is an int, 1 or 0. A null pointer or a zero size where none is allowed is a programming
 * error: it prints "module:line:assertion failed." and aborts, in every build type. */
#ifndef IBISPARSER_CMN_H
#define IBISPARSER_CMN_H

#include <stddef.h>
#include <stdio.h>

#include "IbisParser/linkage.h"

IBIS_BEGIN_DECLS

enum {
    CMN_PATH_MAX = 1024,  /* characters of a path or file name, terminator excluded */
    CMN_QUOTE_MAX = 2176, /* characters of a text quoted in a message */
    CMN_SCAN_MAX = 120    /* characters that a guarded scan may pass */
};

/* State of a cell read by CMN_GetColValue. */
typedef enum CellState { CELL_ABSENT = 0, CELL_NUMBER = 1, CELL_NA = 2 } CellState;

typedef struct ScaleRow {
    long long letter;
    double factor;
} ScaleRow;
extern const ScaleRow Scales[9];

extern const char* const ReservedWords[]; /* ends with an empty string */
extern int gbAllowAnyLineLength;
extern int gbAllowAnyCharacter;
extern char gsFilePath_ibs[CMN_PATH_MAX + 1];

/* Prints "module:line:assertion failed.", flushes and aborts. Every module names itself in a
 * static s_Module. */
#ifdef __cplusplus
[[noreturn]]
#else
_Noreturn
#endif
void CMN_AssertFailed(const char* module, int line);

#define CMN_ASSERT(cond)                                   \
    do {                                                   \
        if (!(cond)) CMN_AssertFailed(s_Module, __LINE__); \
    } while (0)

/* Tokens of one line. */
typedef struct CmnArgs {
    int maxArgs; /* slots of argv */
    int nStored; /* strings stored */
    int argc;    /* tokens seen, stored or not */
    char** argv; /* owned; unused slots are null */
} CmnArgs;

/* Memory. Failures are logged; blocks of CMN_malloc are zeroed. */
int CMN_malloc(void** p, size_t n) IBIS_CHECK_RESULT;
int CMN_realloc(void** p, size_t n) IBIS_CHECK_RESULT;
void CMN_free(void* p);
void CMN_freeSetNull(void** p);
char* CMN_StrMake(const char* s);
char* CMN_StrMakeN(const char* s, int n);

/* Strings. */
void CMN_strncpy(char* d, const char* s, size_t n);
char* CMN_ultoa(unsigned long v);
int CMN_StrSameIC(const char* a, const char* b);
int CMN_StrSameICn(const char* a, const char* b, size_t n);
int CMN_MatchKeyword(const char* a, char* b);
int CMN_IsWhitespace(int c);
void CMN_EatWhitespace(char** p);
void CMN_EatNonWhitespace(char** p);
int CMN_EatKeyword(char** p);
void CMN_TerminateEnd(char* s);
void CMN_ConvertToLower(char* s);
void CMN_ConvertToUpper(char* s);
int CMN_AnyUpper(const char* s);
char* CMN_getBasename(char* path);
int CMN_ReservedWord(const char* w);
int CMN_ReservedWordErr(const char* w);
void CMN_TestRequiredKeyword(const char* keyword, int found);

/* Splitting. */
int CMN_ArgParse(const char* line, int maxArgs, CmnArgs* args);
int CMN_ArgParsePlus(const char* line, int maxArgs, char sep, CmnArgs* args);
void CMN_ArgFree(CmnArgs* args);

/* Numbers, always as in the C locale. */
int CMN_Get_Value(const char* text, double* value);
int CMN_Get_ValueOrNA(const char* text, double* value, int* isNA);
int CMN_GetColValue(const char* text, const char* column, const char* keyword, double* value,
                    int* state);
int CMN_StrToUI(const char* text, unsigned* value);
int CMN_StrToDbl(const char* text, double* value);
int CMN_gettok(char* text, double* value, char** next);

/* Keyword values. dest holds maxLen + 1 characters; for a file name 1025. */
void CMN_SetStr(char* dest, const char* src, unsigned maxLen, const char* keyword);
int CMN_SetKeywordStr(char* dest, const char* src, unsigned maxLen, const char* keyword);
int CMN_SetFilenameStr(char* dest, const char* src, unsigned maxLen, const char* keyword);

/* Files and lines. */
FILE* CMN_fopen(const char* name, const char* mode);
char* CMN_GetIbsPath(char* buf);
int CMN_AllowAnyCharacter(int on);
int CMN_OpenFile(const char* name, int kind, FILE** file, char* fileName);
char* CMN_GetLine(char* buf, int size, FILE* stream);
char* CMN_GetInfiniteLine(unsigned* size, FILE* stream);
int CMN_getIbisVer(const char* name, unsigned long* lines, int kind);

IBIS_END_DECLS

#endif
