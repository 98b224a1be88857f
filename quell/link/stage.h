// A stage of a link: a model with its parameters, and what it did to the responses.
#ifndef QUELL_LINK_STAGE_H
#define QUELL_LINK_STAGE_H

#include <optional>
#include <string>
#include <vector>

#include "quell/link/parameters.h"
#include "quell/link/point.h"
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

// What a stage is made of.
struct StageSetup {
    std::string name;  // what the results call it
    ModelSetup model;
};

struct LinkStage {
    StageSetup setup;
    AmiResult ami;
    std::optional<LinkPoint> after;     // the responses that it left; empty when the model failed
    std::vector<std::string> warnings;  // of the run, without those of the setup

    bool Failed() const { return ami.returnCode == 0; }  // the model's own word
};

// Runs a model over the responses before it. A failure that the model reports is part of the
// result; throws CommandError when it cannot be loaded, crashes or takes too long.
LinkStage RunStage(const StageSetup& setup, const LinkPoint& before, const TimeGrid& grid,
                   double timeout);

}  // namespace quell

#endif
