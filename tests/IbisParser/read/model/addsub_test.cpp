// [Add Submodel]: its lines.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

static const std::string s_submodels = R"([Submodel] k
Submodel_type Bus_hold
[Submodel] k2
Submodel_type Bus_hold
[Submodel] c
Submodel_type Dynamic_clamp
)";

GTEST_TEST(AddSub, Lines)
{
    // Three of the four submodels are added in any case.
    const IbsLog log({{100, 200}, {202, 209}, {2700, 2799}});
    const std::string head = "[Model] m\nModel_type 3-state\nC_comp 3p 2p 4p\n";
    CheckCases(log, head + Supply + "[Add Submodel]\n", s_submodels + ModelInUse,
               R"(
--- 3.2 legal:
k All
c Driving
c Non-Driving
--- 3.2 columns: E2702@9 E2702@10
k
k All now
k All
--- 3.2 mode: E2703@9
k Always
--- 3.2 name of 21: E2704@9 E0200
a12345678901234567890 All
--- 3.2 twice: E2705@11 E2705@12
c Driving
k All
c All
k Driving
--- 3.2 none: E2706@9
--- 3.2 not defined: E0200
keepr All
--- 3.2 two holders: W0206
k All
k2 Driving
--- 3.2 holders of different modes:
k Non-Driving
k2 Driving
)");
}
