// The curves of a buffer model, from the document store of the parser library: its tables as the
// file gives them, its combined curves, its loads and operating points, its waveforms. Volt,
// ampere, ohm, second; currents positive into the component.
#ifndef QUELL_VIEW_BUFFER_CURVES_H
#define QUELL_VIEW_BUFFER_CURVES_H

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "IbisParser/acdc.h"
#include "IbisParser/curve.h"
#include "IbisParser/mdl.h"
#include "IbisParser/vitbl.h"
#include "IbisParser/wvfrm.h"

namespace quell {

inline constexpr const char* CornerNames[CORNER_COUNT] = {"typ", "min", "max"};

// One corner of a table. x ascends; y is NaN where the cell has no number.
struct CornerCurve {
    int corner = CORNER_TYP;
    std::vector<double> x, y;
    // The cells without a number, on the straight line that is drawn across them.
    std::vector<double> holeX, holeY;
    size_t naCells = 0;       // cells that say NA
    size_t missingCells = 0;  // cells that are not there
};

// A stretch in which a curve that should rise falls; from < to.
struct CurveFall {
    int corner = CORNER_TYP;
    double from = 0, to = 0;
    double loss = 0;  // above 0
};

// The falling stretches of a curve whose loss exceeds the limit; flat pieces inside belong to them.
std::vector<CurveFall> FindFalls(const std::vector<double>& x, const std::vector<double>& y,
                                 int corner, double limit);

struct TableView {
    const Vitbl* table = nullptr;
    std::string key;      // letters and hyphens, unique in the model
    std::string formula;  // of the table voltage x at the pin voltage v; empty: not at the pin
    std::vector<CornerCurve> curves;  // corners with a number
    std::vector<CurveFall> falls;
};

// All V-I tables of a model. Drive tables and clamps stand over the pin voltage, where all of them
// should rise, but for those without a reference voltage in some corner.
std::vector<TableView> TableViews(const Mdl& model);

// A resistor to a voltage that the buffer drives.
struct LoadLine {
    double resistance = 0;                               // with R_dut
    std::array<std::optional<double>, CORNER_COUNT> to;  // volt
    bool timing = false;                                 // Rref to Vref
};

// The fixtures of the waveforms in their order, each once, then the timing load.
std::vector<LoadLine> LoadLines(const Mdl& model);

struct OperatingPoint {
    double v = 0;
    double i = 0;
    bool outside = false;  // beyond the points of the tables
    bool several = false;  // the load line meets the curve more than once
};

// A state of the buffer: the sum of the tables that conduct in it, over the pin voltage.
struct StateView {
    int state = CURVE_LOW;
    std::vector<CornerCurve> curves;             // corners that could be built
    std::array<int, CORNER_COUNT> results = {};  // CurveResult of each corner
    std::vector<CurveFall> falls;
    // By load and corner.
    std::vector<std::array<std::optional<OperatingPoint>, CORNER_COUNT>> points;
};

// The states that the model's type has and in which something conducts. Clamps are held at their
// last value where their diode is off, as the checks do.
std::vector<StateView> StateViews(const Mdl& model, const std::vector<LoadLine>& loads);

// The voltages between which a buffer works, over all corners. False when no reference is given.
struct RailSpan {
    double low = 0, high = 0;
};
std::optional<RailSpan> Rails(const Mdl& model);

struct WaveformView {
    const Wvfrm* waveform = nullptr;
    std::vector<CornerCurve> curves;
    std::vector<CornerCurve> composite;  // [Composite Current]
    // By corner: the ends that the V-I tables give into the same fixture; x is the time of the
    // first and last number.
    struct End {
        int corner = CORNER_TYP;
        double time = 0;
        double volts = 0;
    };
    std::vector<End> ends;
};

// Rising waveforms, then falling ones.
std::vector<WaveformView> WaveformViews(const Mdl& model);

}  // namespace quell

#endif
