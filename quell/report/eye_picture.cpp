// The statistical eye as a picture.
#include "quell/report/eye_picture.h"

#include <algorithm>
#include <cmath>

#include "quell/base/numbers.h"
#include "quell/report/markup.h"
#include "quell/report/png.h"
#include "quell/report/svg.h"

namespace quell {

namespace {

constexpr size_t Rows = 200;
constexpr size_t MostColumns = 256;     // of one unit interval
constexpr double LeastDensity = 1e-18;  // of a row; fainter ones stay blank

struct Cells {
    size_t columns = 0;           // of one unit interval, from -0.5 UI to 0.5 UI
    double half = 0;              // V: the rows reach from -half to half
    std::vector<double> density;  // probability of a row, column by column, rows from the bottom

    double& At(size_t column, size_t row) { return density[column * Rows + row]; }
};

double HighestVoltage(const StatisticalEye& eye)
{
    double highest = 0;
    for (const EyePhase& phase : eye.phases) {
        const double cursor = phase.mainCursor / 2;
        highest = std::max(
            {highest, std::abs(cursor + static_cast<double>(phase.isi.first) * eye.voltageStep),
             std::abs(cursor + static_cast<double>(phase.isi.last()) * eye.voltageStep)});
    }
    return highest;
}

// The total density of ones and zeros repeats every unit interval.
Cells DensityCells(const StatisticalEye& eye, double half)
{
    Cells cells;
    const long phases = std::lround(eye.unitInterval / eye.phaseStep);
    cells.columns = std::min(static_cast<size_t>(phases), MostColumns);
    cells.half = half;
    cells.density.resize(cells.columns * Rows);
    const long columns = static_cast<long>(cells.columns);
    for (long column = 0; column < columns; ++column) {
        const long index =
            static_cast<long>(eye.centre) + (2 * column - columns) * phases / (2 * columns);
        const EyePhase& phase =
            eye.phases[static_cast<size_t>(((index % phases) + phases) % phases)];
        for (size_t i = 0; i < phase.isi.mass.size(); ++i) {
            const double one =
                phase.mainCursor / 2 +
                static_cast<double>(phase.isi.first + static_cast<long>(i)) * eye.voltageStep;
            for (const double v : {one, -one}) {
                const double row = (v / half + 1) / 2 * static_cast<double>(Rows);
                const size_t inside =
                    static_cast<size_t>(std::clamp(row, 0.0, static_cast<double>(Rows) - 1));
                cells.At(static_cast<size_t>(column), inside) += phase.isi.mass[i] / 2;
            }
        }
    }
    return cells;
}

// From faint to strong; readable on white and on black.
constexpr Rgba Ramp[] = {{70, 120, 225, 60},
                         {95, 85, 215, 120},
                         {165, 60, 170, 185},
                         {220, 80, 100, 225},
                         {250, 165, 50, 255}};

// strength from 0 to 1.
Rgba ColourOf(double strength)
{
    const double place = std::clamp(strength, 0.0, 1.0) * (std::size(Ramp) - 1);
    const size_t k = std::min(static_cast<size_t>(place), std::size(Ramp) - 2);
    const double t = place - static_cast<double>(k);
    const auto mix = [t](uint8_t a, uint8_t b) {
        return static_cast<uint8_t>(std::lround(a + t * (b - a)));
    };
    const Rgba& a = Ramp[k];
    const Rgba& b = Ramp[k + 1];
    return {mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue), mix(a.alpha, b.alpha)};
}

// Where a density lies on the ramp: half of it is for the body of the eye, half for its tails.
double Strength(double density)
{
    constexpr double Tail = -18, Body = -5, Most = 0;
    const double decade = std::log10(density);
    return decade < Body ? 0.5 * (decade - Tail) / (Body - Tail)
                         : 0.5 + 0.5 * (decade - Body) / (Most - Body);
}

std::string ImageTag(double x, double y, double width, double height, const std::string& address)
{
    return "<image x=\"" + Coordinate(x) + "\" y=\"" + Coordinate(y) + "\" width=\"" +
           Coordinate(width) + "\" height=\"" + Coordinate(height) +
           "\" preserveAspectRatio=\"none\" href=\"" + address + "\"/>\n";
}

void DrawDensity(SvgFrame* frame, Cells& cells)
{
    // From -1 UI to 1 UI, so half a unit interval is added on both sides.
    const size_t width = 2 * cells.columns;
    std::vector<Rgba> image(width * Rows);
    for (size_t column = 0; column < width; ++column)
        for (size_t row = 0; row < Rows; ++row) {
            const double density = cells.At((column + cells.columns / 2) % cells.columns, row);
            if (density < LeastDensity) continue;
            // Steps of half a decade compress well and look the same.
            const double level = std::round(2 * std::log10(density)) / 2;
            image[(Rows - 1 - row) * width + column] = ColourOf(Strength(std::pow(10.0, level)));
        }
    frame->BeginClip();
    const double top = frame->Y(cells.half);
    frame->Add(ImageTag(frame->X(-1), top, frame->X(1) - frame->X(-1), frame->Y(-cells.half) - top,
                        PngDataUrl(image, width, Rows)));
    frame->EndClip();
}

void DrawColourBar(SvgFrame* frame)
{
    constexpr size_t Steps = 37;
    std::vector<Rgba> image(Steps);
    for (size_t k = 0; k < Steps; ++k)
        image[Steps - 1 - k] = ColourOf(static_cast<double>(k) / (Steps - 1));
    const double x = frame->Right() + 12;
    frame->Add(ImageTag(x, frame->Top(), 10, frame->Height(), PngDataUrl(image, 1, Steps)));
    for (const char* density : {"1e-18", "1e-14", "1e-10", "1e-06", "1e-04", "1e-02", "1"})
        frame->Add(SvgText(x + 14,
                           frame->Bottom() - Strength(*ParseNumber(density)) * frame->Height() + 4,
                           "start", "mark", density));
}

// The opening at an error rate as a closed line around the middle of the eye.
std::string ContourPath(const SvgFrame& frame, const StatisticalEye& eye, double errorRate)
{
    struct Place {
        double phase, height;
    };
    std::vector<Place> open;
    double beforePhase = 0, before = 0;
    for (size_t i = 0; i < eye.phases.size(); ++i) {
        const double phase = (static_cast<double>(i) - static_cast<double>(eye.centre)) *
                             eye.phaseStep / eye.unitInterval;
        const double height = EyeHeight(eye, i, errorRate);
        if (i > 0 && (height > 0) != (before > 0))
            open.push_back({beforePhase + (phase - beforePhase) * before / (before - height), 0});
        if (height > 0) open.push_back({phase, height});
        beforePhase = phase;
        before = height;
    }
    if (open.empty()) return "";
    std::string path;
    for (const Place& place : open)
        path += (path.empty() ? "M" : "L") + Coordinate(frame.X(place.phase)) + " " +
                Coordinate(frame.Y(place.height / 2));
    for (auto place = open.rbegin(); place != open.rend(); ++place)
        path +=
            "L" + Coordinate(frame.X(place->phase)) + " " + Coordinate(frame.Y(-place->height / 2));
    return path + "Z";
}

constexpr const char* ContourClasses[] = {"line contour s2", "line contour s6", "line contour s0",
                                          "line contour s3"};

}  // namespace

std::string EyePictureSvg(const LinkEye& eye, SvgUse use)
{
    const double half = 1.02 * HighestVoltage(eye.eye);
    const AxisLayout x = LayOutAxis({"phase", "UI", Scale::Linear, -1.0, 1.0}, {-1, 1}, 8, false);
    const AxisLayout y =
        LayOutAxis({"received voltage", "V", Scale::Linear, -half, half}, {-half, half}, 6, false);
    std::vector<LegendEntry> legend;
    for (size_t k = 0; k < std::size(EyeErrorRates); ++k)
        legend.push_back({"at " + ShortText(EyeErrorRates[k]), ContourClasses[k], false});
    SvgFrame frame("eye", "Statistical eye", legend, x, y, use, 66);
    Cells cells = DensityCells(eye.eye, half);
    DrawDensity(&frame, cells);
    DrawColourBar(&frame);
    frame.BeginClip();
    for (size_t k = 0; k < std::size(EyeErrorRates); ++k) {
        const std::string path = ContourPath(frame, eye.eye, EyeErrorRates[k]);
        if (!path.empty()) frame.Add(SvgPath(ContourClasses[k], path));
    }
    frame.EndClip();
    const double best = frame.X(eye.phase);
    frame.Add(SvgPath("markline", "M" + Coordinate(best) + " " + Coordinate(frame.Top()) + "V" +
                                      Coordinate(frame.Bottom())));
    return frame.Finish();
}

}  // namespace quell
