// [Submodel]: the record, its spec and its tables.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

GTEST_TEST(SubMdl, Records)
{
    CheckCases(IbsLog({{2200, 2299}, {3300, 3300}}), "[Submodel] s\n", ModelInUse,
               R"(
--- 3.2 bus hold:
Submodel_type Bus_hold
[Submodel Spec]
V_trigger_r 1.3 1.2 1.4
V_trigger_f = 1.2 1.1 1.3
Off_delay 1n 1n 1n
[Pullup]
0 0 0 0
1 -1 -1 -1
--- 3.2 unknown sub-parameter and type: E2206@5 E2207@6
Type Bus_hold
Submodel_type Bus_holder
--- 3.2 type of class 4: E2208@5
Submodel_type Fall_back
[Submodel Spec]
V_trigger_r 1.3 1.2 1.4
--- 3.2 type twice, none: E2209@6 E2210@8
Submodel_type Dynamic_clamp
Submodel_type Dynamic_clamp
[Submodel] t
--- 3.2 keyword twice: E2212@9
Submodel_type Dynamic_clamp
[GND Clamp]
0 0 0 0
1 0 0 0
[GND Clamp]
nonsense
--- 3.2 of another type: E2213@6 E2215@10
Submodel_type Dynamic_clamp
[Pulldown]
0 0 0 0
1 1 1 1
[Submodel Spec]
Off_delay 1n 1n 1n
--- 3.2 spec: E2214@7 E2221@8 E2216@8 E2216@8
Submodel_type Bus_hold
[Submodel Spec]
V_trigger 1 1 1
--- 3.2 one trigger of a holder: E2216@8
Submodel_type Bus_hold
[Submodel Spec]
V_trigger_r 1.3 1.2 1.4
--- 4.2 no trigger of a fall-back: E2216@6
Submodel_type Fall_back
--- 3.2 delay: E2217@10
Submodel_type Bus_hold
[Submodel Spec]
V_trigger_r 1.3 1.2 1.4
V_trigger_f 1.2 1.1 1.3
Off_delay 1n -1n -1n
--- 3.2 pulse without clamp and trigger: E2216@10 E2220@10
Submodel_type Dynamic_clamp
[GND Pulse Table]
0 0 0 0
1n 1 1 1
2n 0 0 0
--- 3.2 trigger without pulse: W2222@8
Submodel_type Dynamic_clamp
[Submodel Spec]
V_trigger_r 1.3 1.2 1.4
--- 3.2 triggers reversed: N2223@9 N2223@9
Submodel_type Bus_hold
[Submodel Spec]
V_trigger_r 1.3 1.2 1.4
V_trigger_f 1.3 1.3 1.5
--- 3.2 text behind: W2219@6
Submodel_type Dynamic_clamp
[GND Clamp] now
0 0 0 0
1 0 0 0
--- 3.2 unknown keyword in mid-submodel:
Submodel_type Bus_hold
[Future]
1 2 3
[Submodel Spec]
V_trigger_r 1.3 1.2 1.4
V_trigger_f 1.2 1.1 1.3
)");
    CheckCases(IbsLog({{2200, 2299}, {3300, 3300}}), "", ModelInUse,
               R"(
--- 3.2 no name: E2210@5
[Submodel]
--- 3.2 name of 21: W2219@4 E2211@4 E2210@5
[Submodel] a12345678901234567890 x
)");
}
