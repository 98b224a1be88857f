// What models are used for: pins, selectors, schedules, differential loads.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

GTEST_TEST(ModelUses, References)
{
    static const std::string models = R"([Model] a
Model_type Output
[Driver Schedule]
b 0 NA 0 NA
c 0 NA 0 NA
[Model] b
Model_type Output
[Model] c
Model_type Output
[Model] d
Model_type Output
)";
    const IbsLog log({{210, 212}});
    const std::string pins = ComponentToPins + "1 VDD POWER\n";
    CheckCases(log, pins, models,
               R"(
--- 4.2 on a pin and in a selector: N0212
2 A a
3 B b
4 S s
[Model Selector] s
d first
--- 4.2 one on a pin: N0212 N0212 W0210
2 A a
)");
    CheckCases(log, pins, "[Model] b\nModel_type Output\n",
               R"(
--- 4.2 a pin names an undefined model, so that someone tried: W0210
2 A x
--- 4.2 no pin names a model: E0211
)");
}

GTEST_TEST(ModelUses, DifferentialLoad)
{
    static const std::string model = R"([Model Selector] s
m first
[Model] m
Model_type Input
C_comp 1p 1p 1p
Rref_diff 100
[Voltage Range] 3.3 3 3.6
[Receiver Thresholds]
Vcross_low 0.6
Vcross_high 0.9
Vdiff_ac 0.4
Vdiff_dc 0.2
)";
    CheckCases(IbsLog({{138, 138}, {2000, 2099}}), ComponentToPins + "1 P s\n2 N s\n", model,
               R"(
--- 4.2 two pins alone: W2020 W0138
--- 4.2 a pair:
[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max
1 2 0.2 0 0 0
)");
}
