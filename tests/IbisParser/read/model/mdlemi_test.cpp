// The EMI block of a model.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

GTEST_TEST(MdlEmi, Lines)
{
    CheckCases(ModelLog(), IoModel + Supply + "[Begin EMI Model]\n", ModelInUse,
               R"(
--- 5.0 legal:
Model_emi_type Not_a_ferrite
Model_Domain = Analog
[End EMI Model]
--- 5.0 empty: N4808@12
[End EMI Model]
--- 5.0 unknown, twice: E4801@12 E4802@14
Domain Digital
Model_Domain Digital
Model_Domain Digital
[End EMI Model]
--- 5.0 words: E4803@12 E4804@13
Model_emi_type Iron
Model_Domain Mixed
[End EMI Model]
--- 5.0 ferrite: W4807@13
Model_emi_type Ferrite
[End EMI Model]
--- 5.0 two ends: E4806@14
Model_Domain Digital
[End EMI Model]
[End EMI Model]
--- 5.0 twice: E0118@14
Model_Domain Digital
[End EMI Model]
[Begin EMI Model]
nonsense
[End EMI Model]
)");
}
