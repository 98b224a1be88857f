/* Delays of driver schedules and differential pins, in seconds. */
#ifndef IBISPARSER_DLY_H
#define IBISPARSER_DLY_H

#include "IbisParser/linkage.h"

IBIS_BEGIN_DECLS

/* Reads a number or NA; label and owner name the delay in messages ("Rise_on", "stage_a"). Other
 * text is error 2100. 1 when value and state (CellState) were stored. */
int DLY_Parse(const char* text, const char* label, const char* owner, double* value, int* state);
/* The same for delays that may not be negative: error 2101, the value is kept. */
int DLY_ParseNotNegative(const char* text, const char* label, const char* owner, double* value,
                         int* state);

IBIS_END_DECLS

#endif
