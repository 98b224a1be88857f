// The ranges of [Model]: supply, temperature, transit times, terminator elements.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

GTEST_TEST(MdlRange, Ranges)
{
    CheckCases(ModelLog(), OutputModel, ModelInUse,
               R"(
--- 3.2 one value: E3901@7 E3901@7
[Voltage Range] 3.3
--- 3.2 typ NA: E3300@7
[Voltage Range] NA 3.0 3.6
--- 3.2 three references: E0140@10
[Pullup Reference] 3.3 3 3.6
[Pulldown Reference] 0 0 0
[POWER Clamp Reference] 3.3 3 3.6
--- 3.2 four references:
[Pullup Reference] 3.3 3 3.6
[Pulldown Reference] 0 0 0
[POWER Clamp Reference] 3.3 3 3.6
[GND Clamp Reference] 0 0 0
--- 3.2 four and the range: N0143@12
[Pullup Reference] 3.3 3 3.6
[Pulldown Reference] 0 0 0
[POWER Clamp Reference] 3.3 3 3.6
[GND Clamp Reference] 0 0 0
[Voltage Range] 3.3 3 3.6
--- 3.2 equal references: W0141@10
[Voltage Range] 3.3 3 3.6
[Pullup Reference] 3.3 3 3.6
[Pulldown Reference] 3.3 NA NA
--- 3.2 twice: E0118@8
[Voltage Range] 3.3 3 3.6
[Voltage Range] 3.3
--- 3.2 reversed: N0142@7
[Voltage Range] 3.3 3.6 3
--- 3.2 60 V: W0145@7
[Voltage Range] 60 NA NA
--- 3.2 not positive: W0156@7
[Voltage Range] 0 NA NA
--- 3.2 temperature: W0144@8 W0144@8
[Voltage Range] 3.3 3 3.6
[Temperature Range] 25 -101 301
--- 3.2 transit time: E0147@8 E0146@9
[Voltage Range] 3.3 3 3.6
[TTgnd] 1n 1n -1n
--- 3.2 data below: E0116@8
[Voltage Range] 3.3 3 3.6
3.3 3 3.6
--- 3.2 infinite: E1909@7
[Voltage Range] 3.3 3 inf
--- 3.2 upper-case K: W0158@8 W0158@8 W0158@8 W0144@8
[Voltage Range] 3.3 3 3.6
[Temperature Range] 300K 250K 350K
--- 4.2 external reference unused: N0150@9
[Voltage Range] 3.3 3 3.6
[External Reference] 1 1 1
--- 3.2 unknown keyword in mid-model:
[Future Range] 1 2 3
1 2 3
[Voltage Range] 3.3 3 3.6
--- 3.2 only an unknown keyword: E3901@7 E3901@7
[Voltage Range] 3.3
[Future Range] 1 2 3
)");
}

GTEST_TEST(MdlRange, TerminatorElements)
{
    CheckCases(ModelLog(), "", Supply + ModelInUse,
               R"(
--- 3.2 all:
[Model] m
Model_type Terminator
C_comp 3p 2p 4p
[Rgnd] 50 NA NA
[Rpower] 50 NA NA
[Rac] 50 NA NA
[Cac] 1p NA NA
--- 3.2 half of a pair: E0149@9
[Model] m
Model_type Terminator
C_comp 3p 2p 4p
[Rac] 50 NA NA
--- 3.2 zero: E0148@7
[Model] m
Model_type Terminator
C_comp 3p 2p 4p
[Rgnd] 50 0 60
--- 3.2 in an output: E0119@7
[Model] m
Model_type Output
C_comp 3p 2p 4p
[Rgnd] 50 NA NA
)");
}
