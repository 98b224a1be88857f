// [External Model], and models that need one.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

GTEST_TEST(ExtMdl, Blocks)
{
    const IbsLog log({{100, 206}, {3425, 3425}, {3440, 3442}, {3446, 3446}});
    CheckCases(log, "[Model] m\nModel_type I/O_diff\n", Supply + ModelInUse,
               R"(
--- 4.2 left out: E0155@7
--- 4.2 complete:
[External Model]
Language SPICE
Corner Typ buf.spi buf_t
Ports A_signal_pos A_signal_neg drv ena rcv A_puref A_pdref
D_to_A D_drive drv A_pdref 0 1.2 50p 50p Typ
D_to_A D_enable ena A_pdref 0 1.2 50p 50p Typ
A_to_D D_receive rcv A_pdref 0.4 0.8 Typ
[End External Model]
--- 4.2 conversions missing: E3446@11 E3446@11
[External Model]
Language SPICE
Corner Typ buf.spi buf_t
Ports A_signal_pos A_signal_neg drv ena rcv A_puref A_pdref
D_to_A D_drive drv A_pdref 0 1.2 50p 50p Typ
[End External Model]
--- 4.2 not closed: E3440@11 E3446@11 E3446@11
[External Model]
Language SPICE
Corner Typ buf.spi buf_t
Ports A_signal_pos A_signal_neg drv ena rcv A_puref A_pdref
D_to_A D_drive drv A_pdref 0 1.2 50p 50p Typ
--- 4.2 end alone: E3441@6 E0155@8
[End External Model]
--- 4.2 conversion in a digital language: E3425@10 E0116@12
[External Model]
Language VHDL-AMS
Corner Typ buf.vhd buf_t
Ports A_signal_pos
D_to_A D_drive A_signal_pos A_pdref 0 1.2 50p 50p Typ
[End External Model]
1
--- 4.2 external reference in use:
[External Model]
Ports A_extref
[End External Model]
[External Reference] 1 1 1
)");
}
