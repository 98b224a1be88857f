// The rules of a whole [Model], applied when it closes.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

GTEST_TEST(MdlEnd, ValuesOfTheRecord)
{
    CheckCases(ModelLog(), "", Supply + ModelInUse,
               R"(
--- 3.2 no C_comp: E0125@7
[Model] m
Model_type Output
--- 3.2 series needs none: E2809@7
[Model] m
Model_type Series
--- 3.2 negative and reversed: E0126@6 N0128@6
[Model] m
Model_type Output
C_comp 3p 5p -1p
--- 3.2 21 pF: W0127@6
[Model] m
Model_type Output
C_comp 21p 20p 22p
--- 3.2 20 pF:
[Model] m
Model_type Output
C_comp 20p 19p 22p
--- 3.2 zero: W0129
[Model] m
Model_type Output
C_comp 0 0 0
--- 3.2 typ NA: E3300@6
[Model] m
Model_type Output
C_comp NA 1p 2p
--- 3.2 reversed thresholds: E0130@10
[Model] m
Model_type Input
C_comp 3p 2p 4p
Vinl = 2.0
Vinh = 0.8
--- 3.2 equal thresholds: N0157@10
[Model] m
Model_type Input
C_comp 3p 2p 4p
Vinl = 1.0
Vinh = 1.0
--- 3.2 no thresholds: W0131@8 W0131@8
[Model] m
Model_type Input
C_comp 3p 2p 4p
--- 3.2 output with Vinl: W0132@9
[Model] m
Model_type Output
C_comp 3p 2p 4p
Vinl = 0.8
--- 3.2 Vmeas outside: N0133@11
[Model] m
Model_type I/O
C_comp 3p 2p 4p
Vinl = 0.8
Vinh = 2
Vmeas = 2.1
--- 3.2 load of a receiver: W0134@12 W0134@12
[Model] m
Model_type Input
C_comp 3p 2p 4p
Vinl = 0.8
Vinh = 2
Vmeas = 1.5
Cref = 5p
--- 3.2 signs of the load: E0135@12 E0136@12
[Model] m
Model_type Output
C_comp 3p 2p 4p
Vmeas = 1.5
Rref = 0
Vref = 0
Cref = -1p
--- 3.2 incomplete load: W0137@9 W0137@9
[Model] m
Model_type Output
C_comp 3p 2p 4p
Rref = 50
--- 3.2 enable of an output: N0154@9
[Model] m
Model_type Output
Enable Active-Low
C_comp 3p 2p 4p
--- 4.2 differential without external model: E0155@7
[Model] m
Model_type Output_diff
)");
}
