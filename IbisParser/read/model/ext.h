// What the reading of external circuits and the rules of external models share.
#ifndef IBISPARSER_READ_MODEL_EXT_H
#define IBISPARSER_READ_MODEL_EXT_H

#include "IbisParser/ext.h"
#include "IbisParser/store/section.h"

// State of an open block.
struct ExtReading {
    Ext* item;            // null: its lines are passed over
    const Mdl* model;     // null for a circuit
    const char* keyword;  // for messages
    ExtCornerRow** cornerTail;
    ExtName** parameterTail;
    ExtName** portTail;
    ExtConversion** conversionTail;
    SecSet parameters;
    SecSet conversions;  // kind, digital port and corner
};

// Of the language, when it is known: has digital ports, or needs conversions for them.
int EXT_IsDigital(const Ext* item);
int EXT_IsAnalog(const Ext* item);
// "D_to_A" or "A_to_D".
const char* EXT_ConversionName(const ExtConversion* row);
// 1 when a conversion serves the digital port.
int EXT_HasConversion(const Ext* item, const char* digital);
// The ports that the model's type asks for, and those it has no use for.
void EXT_CheckModel(const Mdl* model, const Ext* item);
// Ends the circuit that the file left open, with the message.
void EXT_CloseCircuit();

#endif
