// The result of a link in words, and its responses as tables.
#include "quell/link/text.h"

#include <algorithm>
#include <iterator>

#include "quell/base/layout.h"
#include "quell/base/numbers.h"

namespace quell {

namespace {

// Text of others between our lines: every line indented, so that it is seen to be theirs.
std::string Indented(const std::string& text)
{
    std::string indented = "  ";
    for (const char c : text) {
        const bool control = static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t';
        indented += control ? '?' : c;
        if (c == '\n') indented += "  ";
    }
    while (!indented.empty() && (indented.back() == ' ' || indented.back() == '\n'))
        indented.pop_back();
    return indented;
}

constexpr struct {
    const char* title;
    const char* format;
    double ResponseFigures::*figure;
} TableColumns[] = {
    {"DC gain", "%.5f", &ResponseFigures::dcGain},
    {"impulse peak, V/s", "%.4e", &ResponseFigures::peak},
    {"main cursor, V", "%.4f", &ResponseFigures::mainCursor},
    {"crosstalk, V", "%.4f", &ResponseFigures::crosstalk},
};
constexpr size_t NameWidth = 14;
constexpr size_t FigureWidth = 11;

constexpr size_t PieceSize = 1U << 20;  // bytes of a table

std::string ChannelText(const Column& column, const TimeGrid& grid)
{
    std::string text = column.name + ": " + column.source + "\n";
    if (column.ports)
        text += "  ports " + PortOrderText(*column.ports) +
                (column.ports->Differential() ? ", differential SDD21" : ", S21") + ", " +
                ShortText(*column.reference) + " ohm, " + PortSourceText(column.portSource) + "\n";
    text += "  loss at " + UnitText(grid.Nyquist(), "Hz") + ": " +
            (column.loss ? Format("%.2f dB", *column.loss) : "not known");
    if (column.delay) text += ", delay " + UnitText(*column.delay, "s");
    return text + "\n  " + TreatmentText(column.treatment) + "\n";
}

std::string StageText(const LinkStage& stage)
{
    std::string text = stage.setup.name + ": " + stage.setup.model.model + "\n  parameters " +
                       stage.setup.model.parameters + "\n  AMI_Init returned " +
                       std::to_string(stage.ami.returnCode) + "\n";
    if (stage.ami.message) text += "  message:\n  " + Indented(*stage.ami.message) + "\n";
    if (stage.ami.parametersOut)
        text += "  parameters out:\n  " + Indented(*stage.ami.parametersOut) + "\n";
    return text;
}

// Every figure at every point, a line for each column.
std::string FigureText(const LinkResult& result)
{
    const std::vector<Column>& columns = result.channel->columns;
    // Without aggressors there is no crosstalk.
    const size_t figures = std::size(TableColumns) - (columns.size() > 1 ? 0 : 1);
    std::string titles = Left("", NameWidth);
    std::string points = titles;
    for (size_t f = 0; f < figures; ++f) {
        titles += "  " + Left(TableColumns[f].title, result.Points() * (FigureWidth + 1));
        points += "  ";
        for (size_t p = 0; p < result.Points(); ++p)
            points += Right(result.PointName(p), FigureWidth) + " ";
    }
    std::string text = titles + "\n" + points + "\n";
    for (size_t k = 0; k < columns.size(); ++k) {
        text += Left(columns[k].name, NameWidth);
        for (size_t f = 0; f < figures; ++f) {
            const auto& row = TableColumns[f];
            text += "  ";
            for (size_t p = 0; p < result.Points(); ++p) {
                const LinkPoint* point = result.Point(p);
                text += Right(point ? Format(row.format, point->figures[k].*row.figure) : "-",
                              FigureWidth) +
                        " ";
            }
        }
        text += "\n";
    }
    return text;
}

std::string HeightText(const LinkResult& result)
{
    std::string text =
        "peak-distortion eye height (1 V between the rails), the height at error rate 0: a\n"
        "statistical height may exceed it, for it leaves rarer patterns out\n ";
    for (size_t p = 0; p < result.Points(); ++p) {
        const LinkPoint* point = result.Point(p);
        text += (p == 0 ? " " : ", ") + result.PointName(p) + " " +
                (point ? Format("%.4f V", point->height) : "-");
    }
    return text + "\n";
}

std::string EyeText(const LinkEye& eye)
{
    std::string text = "statistical eye at an error rate of " + ShortText(eye.errorRate) + "\n";
    text += Format("  height %.4f V, width %.3f UI (%.1f ps), sampled at ", eye.height, eye.width,
                   eye.width * eye.eye.unitInterval * 1e12) +
            UnitText(eye.samplingTime, "s") + "\n  height at";
    for (size_t k = 0; k < eye.heights.size(); ++k)
        text += (k == 0 ? " " : ", ") + ShortText(EyeErrorRates[k]) + ": " +
                Format("%.4f V", eye.heights[k]);
    return text + "\n";
}

}  // namespace

std::string LinkText(const LinkResult& result)
{
    const TimeGrid& grid = result.channel->grid;
    std::string text;
    for (const Column& column : result.channel->columns)
        text += ChannelText(column, grid);
    for (const LinkStage& stage : result.stages)
        text += StageText(stage);
    text += UnitText(grid.bitRate, "bit/s") + ", " + ShortText(grid.samplesPerBit) +
            " samples per bit, sample interval " + UnitText(grid.Interval(), "s") + ", " +
            std::to_string(result.Before().impulses.Rows()) + " samples in V/s\n\n";
    text += FigureText(result) + "\n" + HeightText(result);
    return result.eye ? text + EyeText(*result.eye) : text;
}

std::string PrintedText(const LinkResult& result)
{
    std::string text;
    for (const LinkStage& stage : result.stages)
        if (!stage.ami.printed.empty())
            text +=
                "printed by the " + stage.setup.name + ":\n" + Indented(stage.ami.printed) + "\n";
    return text;
}

void WriteResponses(const LinkResult& result, ResponseTable response, const TextSink& out)
{
    const LinkChannel& channel = *result.channel;
    std::string text = "time";
    std::vector<std::vector<double>> pulses;
    std::vector<std::span<const double>> columns;
    for (size_t k = 0; k < channel.columns.size(); ++k)
        for (size_t p = 0; p < result.Points(); ++p) {
            const LinkPoint* point = result.Point(p);
            if (point == nullptr) continue;
            std::string name = channel.columns[k].name + "_" + result.PointName(p);
            std::replace(name.begin(), name.end(), ' ', '_');
            text += "," + name;
            if (response == ResponseTable::Pulse) {
                pulses.push_back(PulseAt(*point, k, channel.grid));
                columns.emplace_back(pulses.back());
            } else {
                columns.push_back(point->impulses.Column(k));
            }
        }
    text += '\n';
    for (size_t n = 0; n < columns.front().size(); ++n) {
        text += ExactText(static_cast<double>(n) * channel.grid.Interval());
        for (const std::span<const double> column : columns)
            text += "," + ExactText(column[n]);
        text += '\n';
        if (text.size() < PieceSize) continue;
        out(text);
        text.clear();
    }
    out(text);
}

}  // namespace quell
