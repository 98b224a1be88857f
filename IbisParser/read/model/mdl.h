// Shared by the sources of the model section.
#ifndef IBISPARSER_READ_MODEL_MDL_H
#define IBISPARSER_READ_MODEL_MDL_H

#include "IbisParser/base/raise.h"
#include "IbisParser/cmn.h"
#include "IbisParser/drvsh.h"
#include "IbisParser/mdl.h"
#include "IbisParser/store/section.h"

inline bool MDL_IsNumber(const RngSingle& cell)
{
    return cell.state == CELL_NUMBER;
}
// The cell of a corner; a null range has none.
RngSingle MDL_Cell(const RngRange* range, int corner);
// The same, but a corner without a number takes the typ value.
RngSingle MDL_CellOrTyp(const RngRange* range, int corner);
// The least number of a range, infinity when it has none.
double MDL_Least(const RngRange* range);

// The name on the keyword line of a model or submodel; tooLong and furtherText are the messages for
// a name that is cut and for text behind it.
int MDL_NameLine(char* dest, char* text, int code, VersionLimit limit,
                 ErrNumber<const char*, int> tooLong,
                 ErrNumber<const char*, const char*> furtherText);
// A number of a split sub-parameter line. What could not be read is marked CELL_NA, so that it
// does not count as missing.
int MDL_SetSingle(RngSingle* slot, const CmnArgs* args, const char* name);
// Warning 158 for every value of the line whose unit begins with "K"; skip items come before the
// first value.
void MDL_CheckScale(const char* line, int skip);

// A data line directly under [Model].
int MDL_SubParameter(Mdl* model, const char* line);
// Whether a sub-parameter occurred in the model that is being read: clears the memory, asks it.
void MDL_SubParametersBegin();
int MDL_TypeWasGiven();
// 1 when one of the C_comp_* is given, which share out or add to C_comp.
int MDL_HasPartCapacitance(const Mdl* model);

// A keyword whose range stands on its line: reads it and judges its values.
int MDL_RangeLine(Mdl* model, int code, const char* text);

// Of [Driver Schedule], by DrvShDelay.
extern const char* const drvshDelayNames[DELAY_COUNT];

// The rules of a whole record.
void MDL_EndOfRecord(const Mdl* model);

#endif
