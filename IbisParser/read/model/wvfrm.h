// What the checks ask of waveforms.
#ifndef IBISPARSER_READ_MODEL_WVFRM_H
#define IBISPARSER_READ_MODEL_WVFRM_H

#include "IbisParser/wvfrm.h"

// The first of the list's first WVFRM_MAX_PER_OWNER waveforms that has the fixture of `like`, or
// null.
const Wvfrm* WVFRM_FindFixture(const Wvfrm* list, const Wvfrm* like);

#endif
