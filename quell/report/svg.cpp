// The frame that pictures share.
#include "quell/report/svg.h"

#include <algorithm>

#include "quell/report/assets.h"
#include "quell/report/markup.h"

namespace quell {

namespace {

// Width of a letter in the pictures' font, on the safe side.
constexpr double Letter = 6.9;
constexpr double LegendRow = 18;

size_t Letters(const std::string& text)
{
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

}  // namespace

std::string SvgText(double x, double y, const std::string& anchor, const std::string& classes,
                    const std::string& text)
{
    return "<text x=\"" + Coordinate(x) + "\" y=\"" + Coordinate(y) + "\" text-anchor=\"" + anchor +
           "\" class=\"" + classes + "\">" + Escaped(text) + "</text>\n";
}

std::string SvgPath(const std::string& classes, const std::string& d)
{
    return "<path class=\"" + classes + "\" d=\"" + d + "\"/>\n";
}

SvgFrame::SvgFrame(const std::string& id, const std::string& title,
                   const std::vector<LegendEntry>& legend, const AxisLayout& x, const AxisLayout& y,
                   SvgUse use, double right)
    : m_Id(id), m_X(x), m_Y(y), m_Right(PlotWidth - right)
{
    m_Content = "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"picture\" viewBox=\"0 0 " +
                Coordinate(PlotWidth) + " " + Coordinate(PlotHeight) +
                "\" role=\"img\" aria-label=\"" + Escaped(title) + "\">\n";
    if (use == SvgUse::Alone) {
        m_Content += "<title>" + Escaped(title) + "</title>\n<style>" +
                     std::string(PictureStyle()) + "</style>\n";
        m_Content += "<rect class=\"paper\" width=\"100%\" height=\"100%\"/>\n";
        m_Content += SvgText(Left, 20, "start", "title", title);
        m_Top += 18;
    }
    DrawLegend(legend);
    DrawAxes();
}

// In rows from the left; names too long for a row are cut.
void SvgFrame::DrawLegend(const std::vector<LegendEntry>& legend)
{
    if (legend.empty()) return;
    double x = Left;
    double y = m_Top + 10;
    for (const LegendEntry& entry : legend) {
        std::string name = entry.name;
        const size_t most = 60;
        if (Letters(name) > most) {
            size_t end = most - 1;
            while ((static_cast<unsigned char>(name[end]) & 0xC0) == 0x80)
                --end;
            name = name.substr(0, end) + "…";
        }
        const double width = 34 + Letter * static_cast<double>(Letters(name));
        if (x > Left && x + width > PlotWidth) {
            x = Left;
            y += LegendRow;
        }
        m_Content += SvgPath(entry.classes,
                             entry.dot ? "M" + Coordinate(x + 11) + " " + Coordinate(y - 4) + "h0"
                                       : "M" + Coordinate(x) + " " + Coordinate(y - 4) + "h22");
        m_Content += SvgText(x + 27, y, "start", "legend", name);
        x += width + 8;
    }
    m_Top = y + 8;
}

void SvgFrame::DrawAxes()
{
    std::string grid;
    std::string labels;
    const double tolerance = 0.5;
    double lastEnd = 0;
    for (const Tick& tick : m_X.ticks) {
        const double x = X(tick.at);
        if (!(x >= Left - tolerance && x <= m_Right + tolerance)) continue;
        grid += "M" + Coordinate(x) + " " + Coordinate(m_Top) + "V" + Coordinate(m_Bottom);
        const double half = 0.5 * Letter * static_cast<double>(Letters(tick.text));
        if (x - half < lastEnd + 4) continue;
        lastEnd = x + half;
        labels +=
            SvgText(x, m_Bottom + 16, x + half > PlotWidth ? "end" : "middle", "tick", tick.text);
    }
    for (const Tick& tick : m_Y.ticks) {
        const double y = Y(tick.at);
        if (!(y >= m_Top - tolerance && y <= m_Bottom + tolerance)) continue;
        grid += "M" + Coordinate(Left) + " " + Coordinate(y) + "H" + Coordinate(m_Right);
        labels += SvgText(Left - 6, y + 4, "end", "tick", tick.text);
    }
    m_Content += SvgPath("grid", grid) + labels;
    m_Content += SvgPath("frame", "M" + Coordinate(Left) + " " + Coordinate(m_Top) + "V" +
                                      Coordinate(m_Bottom) + "H" + Coordinate(m_Right));
    m_Content += SvgText((Left + m_Right) / 2, PlotHeight - 8, "middle", "axis", m_X.title);
    const std::string x = Coordinate(13);
    const std::string y = Coordinate((m_Top + m_Bottom) / 2);
    m_Content += "<text transform=\"translate(" + x + " " + y +
                 ") rotate(-90)\" text-anchor=\"middle\" class=\"axis\">" + Escaped(m_Y.title) +
                 "</text>\n";
}

void SvgFrame::BeginClip()
{
    m_Content += "<clipPath id=\"clip-" + Escaped(m_Id) + "\"><rect x=\"" + Coordinate(Left) +
                 "\" y=\"" + Coordinate(m_Top) + "\" width=\"" + Coordinate(Width()) +
                 "\" height=\"" + Coordinate(Height()) +
                 "\"/></clipPath>\n<g clip-path=\"url(#clip-" + Escaped(m_Id) + ")\">\n";
}

}  // namespace quell
