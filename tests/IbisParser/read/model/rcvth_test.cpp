// [Receiver Thresholds]: single-ended and differential sets.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

static const std::string s_model = R"([Model] m
Model_type Input
C_comp 3p 2p 4p
Vinl = 1.3
Vinh = 1.9
)";

GTEST_TEST(RcvTh, Thresholds)
{
    CheckCases(ModelLog(), s_model + Supply + "[Receiver Thresholds]\n", ModelInUse,
               R"(
--- 4.2 single-ended:
Vth 1.6
Vinh_ac 0.4
Vinh_dc 0.2
Vinl_ac -0.4
Vinl_dc -0.2
--- 4.2 differential on a single-ended pin: W2020
Vcross_low 0.6
Vcross_high 0.9
Vdiff_ac 0.4
Vdiff_dc 0.2
--- 4.2 none: E2005@11
--- 4.2 unknown: E2002@11 E2005@12
Vhigh 1
--- 4.2 two values, no value: E2003@11 E2003@12 E2007
Vth 1.6 1.7
Vinh_ac
Vinh_dc 0.2
Vinl_ac -0.4
Vinl_dc -0.2
--- 4.2 unknown supply: E2004@12 E2009 E2011
Vth_min 1
Reference_supply Vcc
--- 4.2 missing members: E2007 E2007 E2007
Tslew_ac 1n
Vth 1.6
Vinh_ac 0.4
--- 4.2 missing differential members: E2008 E2008 E2008 W2020
Tdiffslew_ac 1n
Vdiff_ac 0.4
--- 4.2 signs: E2012 E2013 E2012
Vth 1.6
Vinh_ac -0.4
Vinh_dc 0.2
Vinl_ac 0.4
Vinl_dc -0.2
Tslew_ac 0
--- 4.2 nesting: E2014 E2014
Vth 1.6
Vinh_ac 0.1
Vinh_dc 0.2
Vinl_ac -0.1
Vinl_dc -0.2
--- 4.2 spread: E2010
Vth 1.6
Vinh_ac 0.4
Vinh_dc 0.2
Vinl_ac -0.4
Vinl_dc -0.2
Vth_min 1.7
Vth_max 1.8
--- 4.2 sensitivity alone and large: W2016 W2018
Vth 1.6
Vinh_ac 0.4
Vinh_dc 0.2
Vinl_ac -0.4
Vinl_dc -0.2
Threshold_sensitivity 1.1
--- 4.2 supply that is not there: E2017
Vth 1.6
Vinh_ac 0.4
Vinh_dc 0.2
Vinl_ac -0.4
Vinl_dc -0.2
Threshold_sensitivity 0.5
Reference_supply Ext_ref
--- 4.2 outside the rails: W2019 N2021
Vth 3.4
Vinh_ac 0.4
Vinh_dc 0.2
Vinl_ac -0.4
Vinl_dc -0.2
--- 4.2 crossing window: E2015 W2020
Vcross_low 0.9
Vcross_high 0.9
Vdiff_ac 0.4
Vdiff_dc 0.2
--- 4.2 far from Vinl: N2021
Vth 1.2
Vinh_ac 0.4
Vinh_dc 0.2
Vinl_ac -0.4
Vinl_dc -0.2
--- 4.2 twice: E1911@12
Vth 1.6
Vth 1.6
Vinh_ac 0.4
Vinh_dc 0.2
Vinl_ac -0.4
Vinl_dc -0.2
)");
}
