// The message table, one block of numbers per module. The order of the rows is part of the search's
// behaviour and is visible here: the repeats after 4025 and 4369 are found by no search.
#include "IbisParser/errlog.h"

// clang-format off
const ErrorRow errorLogTable[] = {
#include "IbisParser/base/messages/m0000.inc"         // 0 errlog
#include "IbisParser/base/messages/m0100.inc"         // 100-263 mdl
#include "IbisParser/base/messages/m0500.inc"         // 500-553 cmpnt
#include "IbisParser/base/messages/m0600.inc"         // 600-614 apkg
#include "IbisParser/base/messages/m0700.inc"         // 700-729 chk
#include "IbisParser/base/messages/m0800.inc"         // 800-818 cmpntemi
#include "IbisParser/base/messages/m0900.inc"         // 900-923 parse
#include "IbisParser/base/messages/m1000.inc"         // 1000-1020 hdr
#include "IbisParser/base/messages/m1100.inc"         // 1100-1115 msel
#include "IbisParser/base/messages/m1200.inc"         // 1200-1217 pin
#include "IbisParser/base/messages/m1300.inc"         // 1300-1314 pinmap
#include "IbisParser/base/messages/m1400.inc"         // 1400-1404 rngp
#include "IbisParser/base/messages/m1500.inc"         // 1500-1513 diffpin
#include "IbisParser/base/messages/m1600.inc"         // 1600-1605 ramp
#include "IbisParser/base/messages/m1700.inc"         // 1700-1720 sermap
#include "IbisParser/base/messages/m1800.inc"         // 1800-1846 wvfrm
#include "IbisParser/base/messages/m1900.inc"         // 1900-1924 cmn
#include "IbisParser/base/messages/m2000.inc"         // 2000-2021 rcvth
#include "IbisParser/base/messages/m2100.inc"         // 2100-2101 dly
#include "IbisParser/base/messages/m2200.inc"         // 2200-2239 submdl
#include "IbisParser/base/messages/m2300.inc"         // 2300-2344 pkgmdl
#include "IbisParser/base/messages/m2400.inc"         // 2400-2444 acdc
#include "IbisParser/base/messages/m2500.inc"         // 2500-2508 pkg
#include "IbisParser/base/messages/m2600.inc"         // 2600-2631 mtx
#include "IbisParser/base/messages/m2700.inc"         // 2700-2709 addsub
#include "IbisParser/base/messages/m2800.inc"         // 2800-2811 serel
#include "IbisParser/base/messages/m2900.inc"         // 2900-2909 node
#include "IbisParser/base/messages/m3000.inc"         // 3000-3014 drvsh
#include "IbisParser/base/messages/m3100.inc"         // 3100-3123 mdlspec
#include "IbisParser/base/messages/m3200.inc"         // 3200-3234 vitbl
#include "IbisParser/base/messages/m3300.inc"         // 3300 krng
#include "IbisParser/base/messages/m3400.inc"         // 3400-3470 ext
#include "IbisParser/base/messages/m3600.inc"         // 3600 nml
#include "IbisParser/base/messages/m3700.inc"         // 3700-3718 circuit
#include "IbisParser/base/messages/m3800.inc"         // 3800-3820 testdata
#include "IbisParser/base/messages/m3900_rng.inc"     // 3900-3904 rng
#include "IbisParser/base/messages/m4000.inc"         // 4000-4025 testload
#include "IbisParser/base/messages/m3900_ibis.inc"    // 3900-3901 again, ibis
#include "IbisParser/base/messages/m4200.inc"         // 4200-4216 sect
#include "IbisParser/base/messages/m4300.inc"         // 4300-4369 ebdmdl
#include "IbisParser/base/messages/m4300_unused.inc"  // 4300-4309 twice and 4300-4304 again, ebdmdl
#include "IbisParser/base/messages/m4500.inc"         // 4500-4506 refdes
#include "IbisParser/base/messages/m4600.inc"         // 4600-4635 algmod
#include "IbisParser/base/messages/m4700.inc"         // 4700-4732 curve
#include "IbisParser/base/messages/m4800.inc"         // 4800-4808 mdlemi
#include "IbisParser/base/messages/m4900.inc"         // 4900-4911 isso
};
// clang-format on
static_assert(sizeof errorLogTable / sizeof errorLogTable[0] == ERRLOG_ROWS, "row lost or added");
