// A buffer model in pictures: its tables, its combined curves with load lines, its waveforms.
#ifndef QUELL_VIEW_MODEL_PLOTS_H
#define QUELL_VIEW_MODEL_PLOTS_H

#include <string>
#include <vector>

#include "quell/check/report.h"
#include "quell/report/plot.h"
#include "quell/view/buffer_curves.h"

namespace quell {

enum class PlotGroup { Combined, Tables, Waveforms, Composite };

struct ModelPlot {
    PlotGroup group = PlotGroup::Tables;
    LinePlot plot;
    // Words of messages that are about this picture.
    std::vector<std::string> phrases;
    // Its falling stretches, each with the number of the plot's band that shows it.
    std::vector<CurveFall> falls;
    std::vector<size_t> bandOfFall;
};

// id begins the names of the plots: letters, digits and hyphens.
std::vector<ModelPlot> ModelPlots(const Mdl& model, const std::string& id,
                                  const std::vector<LoadLine>& loads,
                                  const std::vector<StateView>& states);

// The plot that a finding is about, or plots.size(). Its caption gets the message, and the falling
// stretch that it means its number.
size_t TieFinding(const Finding& finding, std::vector<ModelPlot>& plots);

// "50 Ω to 0 V", with all corners where they differ.
std::string LoadText(const LoadLine& load);

const char* StateName(int state);

}  // namespace quell

#endif
