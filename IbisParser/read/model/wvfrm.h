// What the checks ask of waveforms.
#ifndef IBISPARSER_READ_MODEL_WVFRM_H
#define IBISPARSER_READ_MODEL_WVFRM_H

#include "IbisParser/wvfrm.h"

// The first of the list's first WVFRM_MAX_PER_OWNER waveforms that has the fixture of `like`, or
// null.
const Wvfrm* WVFRM_FindFixture(const Wvfrm* list, const Wvfrm* like);
// 1 when the model's type drives one level only and the fixture pulls to that very level.
bool WVFRM_FixtureHidesEdge(const Wvfrm* waveform, const Mdl* model, int corner);

// Shape rules of all waveforms of a model and the rules between them; of a submodel. hasCorner
// tells in which corners some table or waveform of the owner has numbers.
void WVFRM_CheckModel(const Mdl* model, const bool* hasCorner);
void WVFRM_CheckSubMdl(const SubMdl* submodel, const bool* hasCorner);

#endif
