/* Keyword codes, keyword tables, line kinds, file types and version classes of IBIS files. */
#ifndef IBISPARSER_KEYWORD_H
#define IBISPARSER_KEYWORD_H

#include "IbisParser/linkage.h"

IBIS_BEGIN_DECLS

typedef enum KeywordCode {
#define KEY2(code, enumerator, ...) enumerator = (code),
#define KEY3(code, enumerator, ...) enumerator = (code),
#define KEY4(code, enumerator, ...) enumerator = (code),
#define KEY5(code, enumerator, ...) enumerator = (code),
#define KEYN(since, code, enumerator, ...) enumerator = (code),
#include "IbisParser/keywords.inc"
#undef KEY2
#undef KEY3
#undef KEY4
#undef KEY5
#undef KEYN
} KeywordCode;

/* One row of a keyword table: upper case, "_" for a blank. A table ends with NOT_KEY. */
typedef struct KeywordEntry {
    const char* name;
    KeywordCode code;
    int reserved; /* always 0 */
} KeywordEntry;

extern const KeywordEntry keywords[];      /* version 2 */
extern const KeywordEntry keywords_Ver3[]; /* version 3 */
extern const KeywordEntry keywords_Ver4[]; /* version 4 */
extern const KeywordEntry keywords_Ver5[]; /* version 5 */

/* What a section receives. */
typedef enum LineKind { LINE_KEYWORD = 1, LINE_DATA = 4 } LineKind;

typedef enum FileType { FILE_IBS = 1, FILE_PKG = 2, FILE_EBD = 3, FILE_AMI = 4 } FileType;

IBIS_END_DECLS

#endif
