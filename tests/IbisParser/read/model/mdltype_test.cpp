// Which keywords a type of model takes.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

GTEST_TEST(MdlType, KeywordsByType)
{
    CheckCases(ModelLog(), "", Supply + ModelInUse,
               R"(
--- 3.2 driver tables in a receiver: W0122@9 W0122@12
[Model] m
Model_type Input
Vinl 1
Vinh 2
C_comp 3p 2p 4p
[Pulldown]
0 0 0 0
1 1 1 1
[Ramp]
dV/dt_r 1/1n NA NA
dV/dt_f 1/1n NA NA
--- 3.2 clamp in a series model: E0119@7
[Model] m
Model_type Series
[R Series] 10 NA NA
[GND Clamp]
0 0 0 0
1 1 1 1
--- 3.2 schedule in a receiver: E0119@9 E3006
[Model] m
Model_type Input
Vinl 1
Vinh 2
C_comp 3p 2p 4p
[Driver Schedule]
m 0 NA 0 NA
--- 4.2 thresholds in a driver, not said twice: E0119@7
[Model] m
Model_type Output
C_comp 3p 2p 4p
[Receiver Thresholds]
Vth 1
Vinh_ac 0.2
Vinh_dc 0.1
Vinl_ac -0.2
Vinl_dc -0.1
--- 3.2 without a type: E0120@9
[Model] m
[Ramp]
dV/dt_r 1/1n NA NA
dV/dt_f 1/1n NA NA
--- 3.2 text behind: W0117@7
[Model] m
Model_type Output
C_comp 3p 2p 4p
[Ramp] fast
dV/dt_r 1/1n NA NA
dV/dt_f 1/1n NA NA
--- 3.2 twice, the second is dropped: E0118@10
[Model] m
Model_type Output
C_comp 3p 2p 4p
[Ramp]
dV/dt_r 1/1n NA NA
dV/dt_f 1/1n NA NA
[Ramp]
nonsense
)");
}
