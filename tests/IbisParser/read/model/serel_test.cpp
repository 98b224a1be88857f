// Series elements, and the states of a switch.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

GTEST_TEST(SerEl, Elements)
{
    CheckCases(ModelLog(), "[Model] m\n", Supply + ModelInUse,
               R"(
--- 3.2 legal:
Model_type Series
[R Series] 10 9 11
[L Series] 0 0 0
[Rl Series] 1 1 1
--- 3.2 in an output: E2801@7 E2803@8
Model_type Terminator
C_comp 1p 1p 1p
[R Series] 10 9 11
[On]
--- 3.2 outside On and Off: E2802@6
Model_type Series_switch
[R Series] 10 9 11
[On]
[R Series] 10 9 11
[Off]
--- 3.2 twice in a state: E2804@8
Model_type Series_switch
[On]
[R Series] 10 9 11
[R Series] 10 9 11
[Off]
[R Series] 1k 1k 1k
--- 3.2 state twice: E0118@9 E2804@10
Model_type Series_switch
[On]
[R Series] 10 9 11
[Off]
[On]
[R Series] 10 9 11
[C Series] 1p 1p 1p
--- 3.2 values: E2805@6 E2805@7
Model_type Series
[R Series] 10 0 11
[C Series] -1p 0 1p
--- 3.2 companions: E2806@10 E2807@10 E2808@10
Model_type Series
[Rl Series] 10 9 11
[Rc Series] 10 9 11
[Lc Series] 1n 1n 1n
--- 3.2 none: E2809@9
Model_type Series_switch
[On]
[Off]
--- 3.2 state missing: E2810@9
Model_type Series_switch
[On]
[R Series] 10 9 11
--- 3.2 two kinds of table: W2811@14
Model_type Series
[Series Current]
0 0 0 0
1 1 1 1
[Series MOSFET]
Vds = 1
0 0 0 0
1 1 1 1
--- 3.2 table twice: E2804@9
Model_type Series
[Series Current]
0 0 0 0
1 1 1 1
[Series Current]
nonsense
--- 3.2 text and data: W0117@6 E0116@7 E0116@9
Model_type Series_switch
[On] now
1 2 3
[R Series] 10 9 11
5
[Off]
--- 3.2 typ NA, K: W0158@6 E3300@6
Model_type Series
[R Series] NA 9K 11
)");
}
