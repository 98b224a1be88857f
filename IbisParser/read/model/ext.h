// What the reading of external circuits and the rules of external models share.
#ifndef IBISPARSER_READ_MODEL_EXT_H
#define IBISPARSER_READ_MODEL_EXT_H

#include "IbisParser/ext.h"
#include "IbisParser/store/life.h"

// State of the circuit or block that is being read; without an open one its lines are passed over.
struct ExtReading : SecReading<Ext> {
    const Mdl* model = nullptr;  // null for a circuit
    bool hasUnknownLanguage = false;
    ExtCornerRow** cornerTail = nullptr;
    ExtName** parameterTail = nullptr;
    ExtName** portTail = nullptr;
    ExtConversion** conversionTail = nullptr;
    SecSet parameters;
    SecSet conversions;  // kind, digital port and corner

    // For messages.
    const char* Title() const { return model != nullptr ? "External Model" : "External Circuit"; }
};

// Of the language, when it is known: has digital ports, or needs conversions for them.
bool EXT_IsDigital(const Ext* item);
bool EXT_IsAnalog(const Ext* item);
// "D_to_A" or "A_to_D".
const char* EXT_ConversionName(const ExtConversion* row);
// Whether a conversion serves the digital port.
bool EXT_HasConversion(const Ext* item, const char* digital);
// The ports that the model's type asks for, and those it has no use for.
void EXT_CheckModel(const Mdl* model, const Ext* item);
// Ends the circuit that the file left open, with the message.
void EXT_CloseCircuit();

#endif
