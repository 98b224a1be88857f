// The sub-parameters of [Model], and its name.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

GTEST_TEST(MdlSub, SubParameters)
{
    CheckCases(ModelLog(), "", Supply + ModelInUse,
               R"(
--- 3.2 legal, with and without =:
[Model] m
Model_type=Input
Vinl 0.8V
Vinh=2.0
C_comp = 3p 2p 4p
--- 3.2 unknown: E0106@9
[Model] m
Model_type Input
Vinl 0.8
Vinh 2
C_comp 3p 2p 4p
Vmax 3
--- 3.2 case only: W0107@5 W0107@5 W0107@6 W0107@8
[Model] m
model_type input
vinl 0.8
Vinh 2
C_Comp 3p 2p 4p
--- 3.2 word twice: E0108@6
[Model] m
Model_type Input
Model_type Output
Vinl 0.8
Vinh 2
C_comp 3p 2p 4p
--- 3.2 number twice: E1911@8
[Model] m
Model_type Input
Vinl 0.8
Vinh 2
Vinh 2.1
C_comp 3p 2p 4p
--- 3.2 unknown type: E0109@5
[Model] m
Model_type Inputs
C_comp 3p 2p 4p
--- 2.1 type of class 3: E0110@5 E2809@7
[Model] m
Model_type Series
--- 3.2 polarity and enable: E0111@6 E0112@7
[Model] m
Model_type 3-state
Polarity Inverted
Enable High
C_comp 3p 2p 4p
--- 3.2 no value, two values: E0113@5 E0113@6
[Model] m
Model_type
Vinl 0.8 0.9
C_comp 3p 2p 4p
--- 3.2 of class 4: E0114@8
[Model] m
Model_type Input
Vinl 0.8
Vinh 2
C_comp_pullup 3p 2p 4p
--- 4.2 the same in class 4:
[Model] m
Model_type Input
Vinl 0.8
Vinh 2
C_comp_pullup 3p 2p 4p
--- 3.2 name of 21 in class 3: E0115@4
[Model] a12345678901234567890
Model_type Input
Vinl 0.8
Vinh 2
C_comp 3p 2p 4p
--- 3.2 name of 20 in class 3:
[Model] a1234567890123456789
Model_type Input
Vinl 0.8
Vinh 2
C_comp 3p 2p 4p
--- 4.0 name of 40 in class 4:
[Model] a123456789012345678901234567890123456789
Model_type Input
Vinl 0.8
Vinh 2
C_comp 3p 2p 4p
--- 3.2 no name: E1913@4
[Model]
Model_type Input
Vinl 0.8
Vinh 2
C_comp 3p 2p 4p
--- 3.2 reserved name, text behind: W0117@4 E1916@4
[Model] power 2
Model_type Input
Vinl 0.8
Vinh 2
C_comp 3p 2p 4p
--- 3.2 upper-case K: W0158@6
[Model] m
Model_type 3-state
Rref=10K
Vref=0
Vmeas 1.5
C_comp 3p 2p 4p
--- 3.2 no number: E1909@6 E1909@7
[Model] m
Model_type Input
Vinl low
Vinh nan
C_comp 3p 2p 4p
--- 3.2 no type: E0120@7
[Model] m
C_comp 3p 2p 4p
--- 3.2 second =: E1918@5
[Model] m
Model_type = = Input
Vinl 0.8
Vinh 2
C_comp 3p 2p 4p
)");
}
