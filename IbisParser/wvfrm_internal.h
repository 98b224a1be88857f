// What the checks ask of waveforms.
#ifndef IBISPARSER_WVFRM_INTERNAL_H
#define IBISPARSER_WVFRM_INTERNAL_H

#include "IbisParser/wvfrm.h"

// The first of the list's first WVFRM_MAX_PER_OWNER waveforms that has the fixture of `like`, or
// null.
const Wvfrm* WVFRM_FindFixture(const Wvfrm* list, const Wvfrm* like);
// 1 when the model's type drives one level only and the fixture pulls to that very level.
bool WVFRM_FixtureHidesEdge(const Wvfrm* waveform, const Mdl* model, int corner);

#endif
