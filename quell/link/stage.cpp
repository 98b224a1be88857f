// A stage of a link: a model with its parameters, and what it did to the responses.
#include "quell/link/stage.h"

#include <filesystem>

#include "quell/base/errors.h"
#include "quell/base/paths.h"

namespace quell {

namespace {

constexpr const char* KitModel = "quell_pcie_gen2_tx.so";

bool Exists(const std::string& path)
{
    std::error_code error;
    return std::filesystem::exists(path, error);
}

std::string Reason(const AmiFile& file)
{
    return file.problems.empty() ? "its root has no name" : file.problems.front();
}

// The root name of the parameter string. Settings that the parameter file does not know end here.
std::string FindRoot(const ModelFiles& files, const std::vector<Setting>& settings,
                     std::vector<std::string>& warnings)
{
    if (!files.ami) {
        std::string stem = ModelStem(files.model);
        warnings.push_back("no parameter file " + files.amiPath +
                           ": the root name is taken to be " + stem);
        return stem;
    }
    const AmiFile& ami = *files.ami;
    if (ami.root.empty()) throw InputError(ami.file, 0, "no parameter tree: " + Reason(ami));
    for (const std::string& problem : ami.problems)
        warnings.push_back(ami.file + ": " + problem);
    const std::vector<std::string> objections = CheckSettings(settings, ami);
    warnings.insert(warnings.end(), objections.begin(), objections.end());
    return ami.root;
}

}  // namespace

ModelFiles FindModel(const ModelOptions& options)
{
    ModelFiles files;
    files.model = options.model.empty() ? KitFile(KitModel) : options.model;
    if (!Exists(files.model)) throw InputError(files.model, 0, "no such model file");
    files.amiPath =
        options.ami.value_or(std::filesystem::path(files.model).replace_extension(".ami").string());
    if (!options.parameters && (options.ami || Exists(files.amiPath)))
        files.ami = ReadAmiFile(files.amiPath);
    return files;
}

ModelSetup SetUpModel(const ModelFiles& files, const ModelOptions& options)
{
    ModelSetup setup;
    setup.model = files.model;
    setup.parameters = options.parameters
                           ? *options.parameters
                           : BuildParameterString(FindRoot(files, options.settings, setup.warnings),
                                                  options.settings);
    return setup;
}

ModelSetup ResolveModel(const ModelOptions& options)
{
    return SetUpModel(FindModel(options), options);
}

LinkStage RunStage(const StageSetup& setup, const LinkPoint& before, const TimeGrid& grid,
                   double timeout)
{
    AmiCall call;
    call.model = setup.model.model;
    call.parameters = setup.model.parameters;
    call.sampleInterval = grid.ModelInterval();
    call.bitTime = grid.BitTime();
    call.timeout = timeout;

    SharedMatrix matrix = before.impulses.Copy();
    LinkStage stage = {setup, RunAmiModel(call, matrix), {}, {}};
    if (stage.ami.outcome == AmiOutcome::NotLoadable) throw InputError(stage.ami.failure);
    if (stage.ami.outcome != AmiOutcome::Returned)
        throw CommandError(EXIT_MODEL_BROKEN, stage.ami.failure);
    stage.warnings = stage.ami.warnings;
    if (stage.ami.returnCode != 0 && stage.ami.returnCode != 1)
        stage.warnings.push_back("AMI_Init returned " + std::to_string(stage.ami.returnCode) +
                                 "; taken as success, which is 1");
    if (stage.Failed()) return stage;
    stage.after = MeasurePoint(std::move(matrix), grid);
    if (!stage.after->finite)
        stage.warnings.push_back("the model left values that are no finite numbers");
    return stage;
}

}  // namespace quell
