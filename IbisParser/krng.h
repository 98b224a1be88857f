/* Sub-parameter lines: splitting, and setters for ranges and single values. */
#ifndef IBISPARSER_KRNG_H
#define IBISPARSER_KRNG_H

#include "IbisParser/cmn.h"
#include "IbisParser/rng.h"
#include "IbisParser/rngp.h"

IBIS_BEGIN_DECLS

/* Splits "name value ...", "name = value ..." or "name=value ..." into the name and at most max - 1
 * values; the "=" is left out of the items and of argc, a second one is error 1918. 0 when the line
 * could not be split, else 1 and args must be freed. */
int KRNG_Split(const char* line, int max, CmnArgs* args);
/* The text after the name and its "=", inside line. */
const char* KRNG_Values(const char* line);

/* Reads typ, min and max from text. A slot that is filled keeps its value: error 1911. A typ of NA
 * is error 3300. 1 when the slot was filled without an error. */
int KRNG_SetRange(RngRange** slot, const char* text, const char* name);
/* Reads items 1 of a split line as a number. A slot that is filled keeps its value: error 1911. A
 * missing value is error 1913; further items are the caller's to judge. 1 when the slot was
 * filled. */
int KRNG_SetSingle(RngSingle* slot, const CmnArgs* args, const char* name);
/* Reads one cell: errors 1909, warning 1910. Unless allowNA, NA is an error as any other text.
 * 1 when a state was stored. */
int KRNG_ReadCell(const char* text, const char* name, int allowNA, RngSingle* out);

/* Infinities and NaN pass the number reader: these turn them into NA, after one 1909 that quotes
 * text. 1 when every cell was finite. */
int KRNG_CleanRange(RngRange* range, const char* text, const char* name);
int KRNG_CleanLine(RngpLine* line, const char* text, const char* name);

/* Place of text in a list that ends with null, from 1; 0 when it is not there. An exact match goes
 * before one that ignores case. */
int KRNG_Word(const char* text, const char* const* list);

IBIS_END_DECLS

#endif
