// The frame that pictures share: size, axes, grid, legend.
#ifndef QUELL_REPORT_SVG_H
#define QUELL_REPORT_SVG_H

#include <string>
#include <vector>

#include "quell/report/axis.h"
#include "quell/report/plot.h"

namespace quell {

struct LegendEntry {
    std::string name;
    std::string classes;  // of the sample line
    bool dot = false;     // or sample dot
};

// A picture under construction: the frame knows where the axes lie.
class SvgFrame {
public:
    // The frame leaves `right` units free beside the plot area.
    SvgFrame(const std::string& id, const std::string& title,
             const std::vector<LegendEntry>& legend, const AxisLayout& x, const AxisLayout& y,
             SvgUse use, double right = 14);

    double X(double value) const { return Left + m_X.Position(value) * Width(); }
    double Y(double value) const { return m_Bottom - m_Y.Position(value) * Height(); }
    double Top() const { return m_Top; }
    double Bottom() const { return m_Bottom; }
    double Right() const { return m_Right; }
    double Width() const { return m_Right - Left; }
    double Height() const { return m_Bottom - m_Top; }

    void Add(const std::string& markup) { m_Content += markup; }
    // Where later content is cut off at the edge of the plot area, until EndClip.
    void BeginClip();
    void EndClip() { m_Content += "</g>\n"; }
    std::string Finish() const { return m_Content + "</svg>\n"; }

    static constexpr double Left = 68;

private:
    void DrawLegend(const std::vector<LegendEntry>& legend);
    void DrawAxes();

    std::string m_Id;
    AxisLayout m_X;
    AxisLayout m_Y;
    double m_Top = 10;
    double m_Bottom = PlotHeight - 44;
    double m_Right = PlotWidth - 14;
    std::string m_Content;
};

// "<text ...>" at a place. anchor: start, middle or end.
std::string SvgText(double x, double y, const std::string& anchor, const std::string& classes,
                    const std::string& text);

// "<path ...>" with these classes.
std::string SvgPath(const std::string& classes, const std::string& d);

}  // namespace quell

#endif
