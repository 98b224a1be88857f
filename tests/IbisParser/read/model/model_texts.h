// What the tests of models put around the lines that they are about.
#ifndef TESTS_IBISPARSER_READ_MODEL_MODEL_TEXTS_H
#define TESTS_IBISPARSER_READ_MODEL_MODEL_TEXTS_H

#include <string>

#include "tests/support/IbsLog.h"

inline const std::string InputModel = R"([Model] m
Model_type Input
C_comp 3p 2p 4p
Vinl = 0.8
Vinh = 2
)";

inline const std::string OutputModel = R"([Model] m
Model_type Output
C_comp 3p 2p 4p
)";

inline const std::string IoModel = R"([Model] m
Model_type I/O
C_comp 3p 2p 4p
Vinl = 0.8
Vinh = 2
Vmeas = 1.5
)";

inline const std::string Supply = "[Voltage Range] 3.3 3.0 3.6\n";

// Ends the model; the pins follow.
inline const std::string ComponentToPins = R"([Component] c
[Manufacturer] x
[Package]
R_pkg 1m 1m 1m
L_pkg 1n 1n 1n
C_pkg 1p 1p 1p
[Pin] signal_name model_name R_pin L_pin C_pin
)";

// Ends the model m, and uses it.
inline const std::string ModelInUse = ComponentToPins + "1 D m\n";

// Lists what is said of models and their tables, but not what of their uses.
inline IbsLog ModelLog()
{
    return IbsLog({{100, 206},
                   {1600, 1699},
                   {1909, 1923},
                   {2000, 2199},
                   {2700, 2899},
                   {3000, 3199},
                   {3300, 3300},
                   {3901, 3902},
                   {4800, 4899}});
}

#endif
