// The rows of [Receiver Thresholds]: how they are read and judged.
#ifndef IBISPARSER_READ_MODEL_RCVTH_H
#define IBISPARSER_READ_MODEL_RCVTH_H

#include "IbisParser/mdl.h"
#include "IbisParser/rcvth.h"

// A set is begun by any of its rows and then needs those that are required.
enum RcvThSet { TH_SET_SINGLE_ENDED, TH_SET_DIFFERENTIAL, TH_NO_SET };
enum RcvThSign { TH_ANY_SIGN, TH_POSITIVE, TH_NEGATIVE };

// In the order of RcvThItem. The spread of Vth and its sensitivity do not begin a set.
struct RcvThRow {
    const char* name;
    RcvThSet set;
    bool isRequired;
    RcvThSign sign;
};
extern const RcvThRow rcvthItems[TH_COUNT];

// What a reference supply needs in the model: its own keyword, or [Voltage Range] where that sets
// all supplies.
struct RcvThSupplyRow {
    const char* name;
    int supply;
    RngRange* Mdl::*own;
    bool orVoltageRange;
};
enum { TH_SUPPLIES = 5 };
extern const RcvThSupplyRow rcvthSupplies[TH_SUPPLIES];

// Number of rows that the file gives, readable or not.
int RCVTH_CountGiven(const RcvTh* thresholds);

#endif
