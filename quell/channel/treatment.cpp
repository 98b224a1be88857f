// How a channel came onto the time grid, in words.
#include "quell/channel/treatment.h"

#include "quell/base/numbers.h"

namespace quell {

std::string TreatmentText(const Treatment& treatment)
{
    std::string text = "DC gain " + ShortText(treatment.dc, 4) + " from " + treatment.dcFrom;
    if (treatment.band)
        text += ", data from " + UnitText(treatment.band->low, "Hz") + " to " +
                UnitText(treatment.band->high, "Hz");
    if (treatment.continuedTo > 0)
        text += ", extrapolated to " + UnitText(treatment.continuedTo, "Hz");
    text += ", record of " + UnitText(treatment.record, "s");
    if (treatment.delayRemoved < 0)
        text += ", moved later by " + UnitText(-treatment.delayRemoved, "s");
    return text;
}

}  // namespace quell
