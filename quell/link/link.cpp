// A link: a transmitter model applied to the impulse matrix of a channel.
#include "quell/link/link.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "quell/base/errors.h"
#include "quell/base/paths.h"
#include "quell/signal/pulse.h"

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

std::vector<double> Slice(const std::vector<double>& matrix, size_t rows, size_t column)
{
    const auto begin = matrix.begin() + static_cast<std::ptrdiff_t>(column * rows);
    return std::vector<double>(begin, begin + static_cast<std::ptrdiff_t>(rows));
}

ResponseFigures Measure(std::vector<double> impulse, const TimeGrid& grid)
{
    ResponseFigures figures;
    figures.impulse = std::move(impulse);
    figures.dcGain = DcGain(figures.impulse, grid.Interval());
    for (const double h : figures.impulse)
        if (!(std::abs(h) <= std::abs(figures.peak))) figures.peak = h;
    figures.pulse = PulseResponse(figures.impulse, grid.Interval(), grid.samplesPerBit);
    return figures;
}

// Main cursors and eye height of all columns, the victim first.
double MeasureEye(const std::vector<ResponseFigures*>& columns, const TimeGrid& grid, size_t& phase)
{
    const PeakDistortion eye = AnalysePeakDistortion(columns.front()->pulse, grid.samplesPerBit);
    columns.front()->mainCursor = eye.mainCursor;
    phase = eye.phase;
    double height = eye.height;
    for (size_t k = 1; k < columns.size(); ++k) {
        const Crosstalk crosstalk = AnalyseCrosstalk(columns[k]->pulse, grid.samplesPerBit);
        columns[k]->mainCursor = crosstalk.largest;
        columns[k]->crosstalk = crosstalk.sum;
        height -= crosstalk.sum;
    }
    return height;
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

LinkResult RunLink(const ImpulseMatrix& matrix, const ModelSetup& setup, double timeout)
{
    LinkResult result;
    result.grid = matrix.grid;
    result.model = setup;
    result.warnings = setup.warnings;
    result.warnings.insert(result.warnings.end(), matrix.warnings.begin(), matrix.warnings.end());

    AmiCall call;
    call.model = setup.model;
    call.parameters = setup.parameters;
    call.rows = matrix.Rows();
    call.columns = matrix.columns.size();
    call.sampleInterval = matrix.grid.Interval();
    call.bitTime = matrix.grid.BitTime();
    call.timeout = timeout;
    call.matrix.reserve(call.rows * call.columns);
    for (const Column& column : matrix.columns)
        call.matrix.insert(call.matrix.end(), column.impulse.begin(), column.impulse.end());

    result.ami = RunAmiModel(call);
    if (result.ami.outcome == AmiOutcome::NotLoadable) throw InputError(result.ami.failure);
    if (result.ami.outcome != AmiOutcome::Returned)
        throw CommandError(EXIT_MODEL_BROKEN, result.ami.failure);
    result.warnings.insert(result.warnings.end(), result.ami.warnings.begin(),
                           result.ami.warnings.end());
    if (result.ami.returnCode != 0 && result.ami.returnCode != 1)
        result.warnings.push_back("AMI_Init returned " + std::to_string(result.ami.returnCode) +
                                  "; taken as success, which is 1");

    std::vector<ResponseFigures*> before;
    std::vector<ResponseFigures*> after;
    result.columns.resize(matrix.columns.size());
    bool finite = true;
    for (size_t k = 0; k < matrix.columns.size(); ++k) {
        LinkColumn& column = result.columns[k];
        column.channel = matrix.columns[k];
        column.before = Measure(std::move(column.channel.impulse), matrix.grid);
        column.channel.impulse.clear();
        before.push_back(&column.before);
        if (result.Failed()) continue;
        column.after = Measure(Slice(result.ami.matrix, call.rows, k), matrix.grid);
        after.push_back(&*column.after);
        finite = finite && std::isfinite(column.after->dcGain);
    }
    result.ami.matrix.clear();
    result.heightBefore = MeasureEye(before, matrix.grid, result.phaseBefore);
    if (!result.Failed()) result.heightAfter = MeasureEye(after, matrix.grid, result.phaseAfter);
    if (!finite) result.warnings.push_back("the model left values that are no finite numbers");
    return result;
}

}  // namespace quell
