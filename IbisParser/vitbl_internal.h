// Shape rules of single V-I tables.
#ifndef IBISPARSER_VITBL_INTERNAL_H
#define IBISPARSER_VITBL_INTERNAL_H

#include "IbisParser/curve_internal.h"

// What the rules ask of the table's surroundings.
struct VitblContext {
    CurveSupply supply;            // the span in which currents matter
    bool hasCorner[CORNER_COUNT];  // some table or waveform of the owner has numbers there
    bool mustConduct;              // all zero is worth a word
    bool comparesCorners;          // pulldown and pullup: minimum against maximum
    bool mayTurnOver;              // ISSO tables
    // The model whose combined curves hold this table and do not fall; null when there is none.
    const char* soundModel;
    bool* soundSaid;  // the note on that is raised once for its model
};

void VITBL_Check(const Vitbl* table, const VitblContext* context);
// A list of [Series MOSFET] tables: the current must not fall when Vds rises.
void VITBL_CheckMosfets(const Vitbl* list, const VitblContext* context);

#endif
