// [Ramp]: its lines.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

GTEST_TEST(Ramp, Lines)
{
    CheckCases(ModelLog(), OutputModel + Supply + "[Ramp]\n", ModelInUse,
               R"(
--- 3.2 legal:
dV/dt_r 1/1n 0.9/2n NA
dV/dt_f = 1/1n NA NA
R_load=500
--- 3.2 unknown: E1601@11
dV/dt_r 1/1n NA NA
dV/dt_f 1/1n NA NA
C_load 1p
--- 3.2 twice: E1602@10 E1602@13
dV/dt_r 1/1n NA NA
dV/dt_r 1/1n NA NA
dV/dt_f 1/1n NA NA
R_load 50
R_load 50
--- 3.2 form: E1603@9 E1603@9 E1603@9 E1603@10 E1603@10 E1603@10
dV/dt_r 1.0 1/1n/2 /1n
dV/dt_f NA nan/1n 1/
--- 3.2 missing and surplus: E1603@9 E1603@10
dV/dt_r 1/1n 1/1n
dV/dt_f 1/1n NA NA 1/1n
--- 3.2 sign: E1604@9 E1604@9
dV/dt_r -1/1n 1/0 NA
dV/dt_f 1/1n NA NA
--- 3.2 load: E1605@11
dV/dt_r 1/1n NA NA
dV/dt_f 1/1n NA NA
R_load 0
--- 3.2 upper-case K, digit in the unit: W1910@10 W0158@11
dV/dt_r 1/1n NA NA
dV/dt_f 1V5/1n NA NA
R_load 1K
)");
}
