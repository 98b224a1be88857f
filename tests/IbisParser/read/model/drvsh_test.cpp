// [Driver Schedule]: rows, and the models that they name.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

static const std::string s_schedule = R"([Pullup Reference] 3.3 3 3.6
[Pulldown Reference] 0 0 0
[Temperature Range] 50 0 100
[Driver Schedule]
)";

static const std::string s_stages = R"([Model] a
Model_type Output
C_comp 0 0 0
C_comp_pullup 1p 1p 1p
[Voltage Range] 3.3 3 3.6
[Model] b
Model_type Open_sink
C_comp 1p 1p 1p
[Voltage Range] 3.3 3 3.6
[Model] o
Model_type Output
C_comp_pullup 1p 1p 1p
[Voltage Range] 3.2 3 3.6
[Model] r
Model_type Input
Vinl 1
Vinh 2
C_comp 1p 1p 1p
[Voltage Range] 3.3 3 3.6
)";

GTEST_TEST(DrvSh, Schedules)
{
    CheckCases(ModelLog(), OutputModel + "Vmeas 1\n" + Supply + s_schedule, s_stages + ModelInUse,
               R"(
--- 4.2 legal patterns: N3014 N3014 N3014
a 0 NA 0 NA
b 1n 3n NA NA
a NA 0 NA 1n
b NA NA 1n 2n
b 1n 2n 1n 2n
--- 4.2 columns: E3002@13 E3002@14
a 0 NA 0
a 0 NA 0 NA 0
a 0 NA 0 NA
--- 4.2 name of 41: E3003@13 E3005
a1234567890123456789012345678901234567890 0 NA 0 NA
--- 4.2 none: E3004@13
--- 4.2 delays: E2100@13 E2101@14 N3014 N3014
b x NA 0 NA
b -1n NA 0 NA
--- 4.2 not defined: E3005
c 0 NA 0 NA
--- 4.2 itself: E3006
m 0 NA 0 NA
--- 4.2 a receiver: E3008 N3014
r 0 NA 0 NA
--- 4.2 all NA: E3009
a NA NA NA NA
--- 4.2 does not return: E3010
a 1n NA NA 2n
--- 4.2 on after off: W3011 W3011
a 3n 1n NA NA
a NA NA 2n 2n
--- 4.2 another supply: W3013
o 0 NA 0 NA
--- 4.2 upper-case K in a delay only: W0158@13 E3005
1K 0K NA 0 NA
)");
}
