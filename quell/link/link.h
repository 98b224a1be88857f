// A link: a transmitter model applied to the impulse matrix of a channel, and the figures of the
// responses before and after it.
#ifndef QUELL_LINK_LINK_H
#define QUELL_LINK_LINK_H

#include <optional>
#include <string>
#include <vector>

#include "quell/channel/channel.h"
#include "quell/link/parameters.h"
#include "quell/params/ami_file.h"
#include "quell/process/host.h"

namespace quell {

struct ModelOptions {
    std::string model;                      // shared library; empty for the kit's
    std::optional<std::string> ami;         // else beside the model, same stem
    std::optional<std::string> parameters;  // the whole string, instead of settings
    std::vector<Setting> settings;
    double timeout = 60;  // s
};

// A model and the string that it will get.
struct ModelSetup {
    std::string model;
    std::string parameters;
    std::vector<std::string> warnings;
};

// A model and its parameter file, read once for any number of settings.
struct ModelFiles {
    std::string model;
    std::string amiPath;
    std::optional<AmiFile> ami;  // empty when there is none, or none is needed
};

// Throws InputError when the model or the parameter file cannot be read.
ModelFiles FindModel(const ModelOptions& options);
// Throws InputError when the parameter file does not know a setting.
ModelSetup SetUpModel(const ModelFiles& files, const ModelOptions& options);
// Both of them.
ModelSetup ResolveModel(const ModelOptions& options);

// One column's response and what it amounts to.
struct ResponseFigures {
    std::vector<double> impulse;  // V/s
    std::vector<double> pulse;    // V for a swing of 1 V between the rails
    double dcGain = 0;            // V/V
    double peak = 0;              // V/s, the largest sample of the impulse response, with its sign
    double mainCursor = 0;        // V: of the victim at the phase of the largest eye height, of an
                                  // aggressor the largest one at its worst phase
    double crosstalk = 0;  // V: what an aggressor takes from the eye height; 0 for the victim
};

struct LinkColumn {
    Column channel;  // its impulse response has moved to `before`
    ResponseFigures before;
    std::optional<ResponseFigures> after;  // empty when the model failed
};

struct LinkResult {
    TimeGrid grid;
    ModelSetup model;
    AmiResult ami;  // its matrix has moved to the columns
    std::vector<LinkColumn> columns;
    double heightBefore = 0;            // V, peak distortion, crosstalk subtracted
    std::optional<double> heightAfter;  // V
    size_t phaseBefore = 0;             // samples, where the height is taken
    size_t phaseAfter = 0;
    std::vector<std::string> warnings;

    bool Failed() const { return ami.returnCode == 0; }  // the model's own word
};

// Runs the model over the matrix. A failure that the model reports is part of the result; throws
// CommandError when it cannot be loaded, crashes or takes too long.
LinkResult RunLink(const ImpulseMatrix& matrix, const ModelSetup& setup, double timeout);

}  // namespace quell

#endif
