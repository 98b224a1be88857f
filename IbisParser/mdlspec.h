/* [Model Spec]: values with corners that stand in for those of the [Model] sub-parameters, and the
 * limits of overshoot, pulses and timing test loads. */
#ifndef IBISPARSER_MDLSPEC_H
#define IBISPARSER_MDLSPEC_H

#include "IbisParser/ibis.h"
#include "IbisParser/rng.h"

IBIS_BEGIN_DECLS

typedef enum MdlSpecItem {
    SPEC_VINH,
    SPEC_VINL,
    SPEC_VINH_PLUS,
    SPEC_VINH_MINUS,
    SPEC_VINL_PLUS,
    SPEC_VINL_MINUS,
    SPEC_S_OVERSHOOT_HIGH,
    SPEC_S_OVERSHOOT_LOW,
    SPEC_D_OVERSHOOT_HIGH,
    SPEC_D_OVERSHOOT_LOW,
    SPEC_D_OVERSHOOT_TIME,
    SPEC_PULSE_HIGH,
    SPEC_PULSE_LOW,
    SPEC_PULSE_TIME,
    SPEC_VMEAS,
    SPEC_CREF,
    SPEC_RREF,
    SPEC_VREF,
    SPEC_CREF_RISING,
    SPEC_CREF_FALLING,
    SPEC_RREF_RISING,
    SPEC_RREF_FALLING,
    SPEC_VREF_RISING,
    SPEC_VREF_FALLING,
    SPEC_VMEAS_RISING,
    SPEC_VMEAS_FALLING,
    SPEC_RREF_DIFF,
    SPEC_CREF_DIFF,
    SPEC_D_OVERSHOOT_AMPL_H,
    SPEC_D_OVERSHOOT_AMPL_L,
    SPEC_D_OVERSHOOT_AREA_H,
    SPEC_D_OVERSHOOT_AREA_L,
    SPEC_WEAK_R,
    SPEC_WEAK_I,
    SPEC_WEAK_V,
    SPEC_COUNT
} MdlSpecItem;

typedef struct MdlSpec {
    RngRange* item[SPEC_COUNT]; /* volt, second, ohm, farad, ampere, volt second; null: not given */
} MdlSpec;

/* The model's entry, or null when it has none. */
const RngRange* MDLSPEC_Get(const Mdl* model, int item);
/* The level above which an input reads high in a corner: Vinh+, else Vinh, else the [Model] value.
 * Its state tells whether there is one. */
RngSingle MDLSPEC_InputHigh(const Mdl* model, int corner);
/* The level below which it reads low: Vinl-, Vinl, the [Model] value. */
RngSingle MDLSPEC_InputLow(const Mdl* model, int corner);

int MDLSPEC_KeywordLine(Mdl* model);
int MDLSPEC_ReceiveLine(Mdl* model, const char* line);
/* The keyword ends: an empty block is reported. */
int MDLSPEC_Fini(Mdl* model);
/* The model ends: the rules between the entries and with the rest of the model. *vmeasNoted comes
 * back as 1 when Vmeas was noted as outside the input thresholds. */
int MDLSPEC_EndOfModel(const Mdl* model, int* vmeasNoted);
void MDLSPEC_Free(MdlSpec* spec); /* null is ignored */

IBIS_END_DECLS

#endif
