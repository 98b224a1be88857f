// What the checks of models and submodels share.
#ifndef IBISPARSER_CHECK_MODEL_H
#define IBISPARSER_CHECK_MODEL_H

#include "IbisParser/mdl.h"
#include "IbisParser/vitbl.h"
#include "IbisParser/wvfrm.h"

// Sets the flags of the corners in which a table or a waveform has numbers.
void CHK_MarkTable(const Vitbl* list, bool* hasCorner);
void CHK_MarkWaveforms(const Wvfrm* list, bool* hasCorner);
// [Ramp] lacks one of its slopes.
void CHK_Ramp(const Ramp* ramp, const char* owner);
// Completeness and plausibility of one model.
void CHK_Model(const Mdl* model, const bool* hasCorner);

#endif
