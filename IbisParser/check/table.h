// Shape rules of single V-I tables, per column with numbers.
//   monotonic  the main direction is that of last minus first current; a stretch against it counts
//              as in curve.h, with the largest current between 0 and the supply
//   step       two currents at one voltage that differ by more than 1e-6 (and 1e-12 A)
//   size       up to 1000 A and 100 V
//   reach      0 V lies within the table, or within 10 mV of it
//   corners    at half the supply of each corner the minimum carries at most 1.1 times the maximum
#ifndef IBISPARSER_CHECK_TABLE_H
#define IBISPARSER_CHECK_TABLE_H

#include "IbisParser/check/curve.h"

// What the rules ask of the table's surroundings.
enum VitblShape {
    VITBL_OWN_SHAPE,  // the table's own shape counts
    VITBL_SOUND,      // the combined curves that hold it do not fall, which is worth a note
    VITBL_ANY_SHAPE   // ISSO tables, and what a message on the combined curves tells
};

// How the shape of a table is judged that the combined curves of these states hold.
VitblShape VITBL_ShapeBy(const CurveFalls* falls, const bool* holds);

struct VitblContext {
    CurveSupply supply;            // the span in which currents matter
    bool hasCorner[CORNER_COUNT];  // some table or waveform of the owner has numbers there
    bool mustConduct;              // all zero is worth a word
    bool comparesCorners;          // pulldown and pullup: minimum against maximum
    VitblShape shape;
    bool* soundSaid;  // the note on sound curves is raised once for their model
};

void VITBL_Check(const Vitbl* table, const VitblContext* context);
// A list of [Series MOSFET] tables: the current must not fall when Vds rises.
void VITBL_CheckMosfets(const Vitbl* list, const VitblContext* context);

#endif
