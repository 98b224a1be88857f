// Rules of the waveforms of models and submodels.
#ifndef IBISPARSER_CHECK_WAVEFORMS_H
#define IBISPARSER_CHECK_WAVEFORMS_H

#include "IbisParser/mdl.h"
#include "IbisParser/submdl.h"
#include "IbisParser/wvfrm.h"

// 1 when the model's type drives one level only and the fixture pulls to that very level.
bool WVFRM_FixtureHidesEdge(const Wvfrm* waveform, const Mdl* model, int corner);

// Shape rules of all waveforms of a model and the rules between them; of a submodel. hasCorner
// tells in which corners some table or waveform of the owner has numbers.
void WVFRM_CheckModel(const Mdl* model, const bool* hasCorner);
void WVFRM_CheckSubMdl(const SubMdl* submodel, const bool* hasCorner);

#endif
