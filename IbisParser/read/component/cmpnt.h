// What the parts of a component share while it is read and tested.
#ifndef IBISPARSER_READ_COMPONENT_CMPNT_H
#define IBISPARSER_READ_COMPONENT_CMPNT_H

#include <cmath>
#include <cstdio>
#include <cstring>

#include "IbisParser/base/raise.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/mdl.h"
#include "IbisParser/msel.h"
#include "IbisParser/parse.h"
#include "IbisParser/pkgmdl.h"
#include "IbisParser/store/life.h"

// Rules that raise their message for the first case of a component only: bits of `reported`.
enum CmpntReported {
    REPORTED_LONG_NUMBER,     // 1210
    REPORTED_PARTIAL_VALUES,  // 1215
    REPORTED_UNUSUAL_VALUE    // 1212, one bit for each of R, L and C
};

struct CmpntKeyword : SecKeyword<Cmpnt> {
    ErrNumber<const char*> duplicate;  // message of a second one; 0: any number may come
    bool afterPin;                     // names pins, which [Pin] must list before
};

// State of the open component: places where the lists end, headers of its tables, names seen.
struct CmpntReading : SecReading<Cmpnt, CmpntKeyword, &Cmpnt::found> {
    unsigned reported = 0;
    int openBlock = 0;       // code of the block that waits for its end keyword, or 0
    int valueOrder[3] = {};  // of [Pin]: columns 4 to 6 as indices into R, L, C
    int valueColumns = 0;    // of [Pin]: columns for R, L and C that the header names
    int hasGroupColumn = 0;  // of [Series Pin Mapping]

    Pin** pinTail = nullptr;
    PinMap** mapTail = nullptr;
    DiffPin** diffTail = nullptr;
    SerMap** seriesTail = nullptr;
    SerState** stateTail = nullptr;
    SerGroup** groupTail = nullptr;
    SerState* openState = nullptr;
    Apkg** alternateTail = nullptr;
    Node** nodeTail = nullptr;
    Circuit** callTail = nullptr;
    Circuit* openCall = nullptr;
    CircuitPort** portTail = nullptr;
    EmiPin** emiPinTail = nullptr;
    EmiPinDomain** emiDomainTail = nullptr;

    SecSet names;  // of the call or switch state being read: ports, groups
    SecSet alternates;
    SecSet nodes;
    SecSet seriesPairs;  // pin, pin_2 and model
    SecSet switchStates;
    SecSet emiPins;
    SecSet emiDomains;
};

// The message that every part has for its own failure.
struct PartFailure {
    const char* module;
    ErrNumber<const char*, const char*, int> unparsed;  // line bug: a line could not be split
};

// The items of a line: as CmnArgs, but in one block, because the lists of pins are long.
struct CmpntItems {
    int argc = 0;  // items of the line
    int nStored = 0;
    const char* argv[7] = {};
    char* text = nullptr;  // owned; the items stand in it

    CmpntItems() = default;
    ~CmpntItems() { SEC_FreeText(&text); }
    CmpntItems(const CmpntItems&) = delete;
    CmpntItems& operator=(const CmpntItems&) = delete;
};

// The columns of [Pin Mapping] after the pin.
extern const char* const pinmapColumns[PINMAP_COLUMNS];

// Splits a line of the part and keeps at most max items; 0 after the message.
int CMPNT_SplitLine(const PartFailure* failure, int line, const char* keyword, const char* text,
                    int max, CmpntItems* items);

// 1 when the component's list has the pin, or when no [Pin] came before, which is reported once
// for the keyword instead.
int CMPNT_HasPin(const Cmpnt* component, const char* pin);

#endif
