// [Model Spec]: its entries, alone, against each other and against the model's own.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

GTEST_TEST(MdlSpec, Entries)
{
    CheckCases(ModelLog(), IoModel + Supply + "[Model Spec]\n", ModelInUse,
               R"(
--- 5.0 legal:
Vinh 2 1.9 2.1
Vinl 0.8 NA NA
S_overshoot_high 4 3.6 4.4
Pulse_high 3 3 3
Pulse_low 0 0 0
Pulse_time 3n 3n 3n
Vmeas 1.5 1.4 1.6
Weak_R 10k NA NA
Weak_V 1 NA NA
--- 3.2 none: W3105@12
--- 3.2 unknown: E3102@12 W3105@13
Vmin 1 2 3
--- 4.2 of a later version: E3103@12
Weak_R 1k 1k 1k
--- 3.2 halves of a pair: E3106@15 E3106@15 E3106@15 E3106@15 E3106@15
Vinh+ 2 2 2
D_overshoot_high 4 4 4
Pulse_time 1n 1n 1n
--- 3.2 order in a column: E3106@16 E3106@16 E3107@16 E3107@16 E3107@16 N3108@16 N3120@16 N3120@16 N0133@16
Vinh+ 2 2 2
Vinh- 1.5 2.5 NA
Vinl 2 0.5 1
Vinh 1.9 1 1
--- 3.2 against the model's value: E3107@13 N3120@13 N0133@13
Vinl 2.5 NA NA
--- 5.0 signs: E3106@15 E3109@15 E3110@15
D_overshoot_time -1n NA NA
D_overshoot_high 4 4 4
Weak_R 0 NA NA
--- 3.2 limits: W3111@20 W3112@20 W3113@20 W3114@20 W3115@20 W3116@20
S_overshoot_high 2 NA NA
S_overshoot_low 0.8 NA NA
D_overshoot_high 1.9 NA NA
D_overshoot_low 0.9 NA NA
D_overshoot_time 1n NA NA
Pulse_high 1 NA NA
Pulse_low 1 NA NA
Pulse_time 1n NA NA
--- 4.2 one edge: E3117@16 W3118@16
Cref_rising 1p NA NA
Vmeas_rising 1.4 NA NA
Vmeas_falling 1.6 NA NA
Vmeas 1.5 NA NA
--- 3.2 Vmeas outside: N3119@13 N3120@13
Vmeas 2.5 NA NA
--- 3.2 above the supply: N3120@13 W3121@13
Vinh 4.0 NA NA
--- 3.2 typ NA: E3300@12
Vinh NA 1.9 2.1
--- 3.2 twice: E1911@13
Vinh 2 2 2
Vinh 2 2 2
)");
    CheckCases(ModelLog(), InputModel + Supply + "[Model Spec]\n", ModelInUse,
               R"(
--- 3.2 Vmeas of a receiver: W3104@11
Vmeas 1 1 1
)");
    CheckCases(ModelLog(), OutputModel + Supply + "[Model Spec]\n", ModelInUse,
               R"(
--- 3.2 Vinl of a driver: W3104@9
Vinl 1 1 1
)");
}
