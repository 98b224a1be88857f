// The parameters that an AMI parameter file describes.
#include "quell/params/ami_file.h"

#include <algorithm>
#include <optional>

#include "quell/base/errors.h"
#include "quell/base/lines.h"
#include "quell/base/nearest.h"
#include "quell/base/numbers.h"
#include "quell/params/ami_tree.h"
#include "quell/reader/read_in_child.h"

namespace quell {

namespace {

constexpr size_t NamesShown = 8;

void Receive(AmiFile& file, FrameFields frame)
{
    switch (frame.Number()) {
        case AMI_FRAME_ROOT:
            file.root = frame.Text();
            break;
        case AMI_FRAME_PROBLEM:
            file.problems.emplace_back(frame.Text());
            break;
        default: {
            AmiParameter parameter;
            parameter.reserved = frame.Number() != 0;
            for (std::string AmiParameter::*text :
                 {&AmiParameter::name, &AmiParameter::usage, &AmiParameter::type,
                  &AmiParameter::defaultValue, &AmiParameter::description})
                parameter.*text = frame.Text();
            for (uint64_t left = frame.Number(); left > 0; --left)
                parameter.format.emplace_back(frame.Text());
            file.parameters.push_back(std::move(parameter));
        }
    }
}

std::string Joined(const std::vector<std::string>& words, size_t first, const char* between)
{
    std::string text;
    for (size_t k = first; k < words.size(); ++k)
        text += (k == first ? "" : between) + words[k];
    return text;
}

bool SameValue(const std::string& a, const std::string& b)
{
    const std::optional<double> x = ParseNumber(a);
    const std::optional<double> y = ParseNumber(b);
    return x && y ? *x == *y : a == b;
}

// Whether a value is of the type. Types without numbers take anything.
bool FitsType(const std::string& value, const std::string& type)
{
    if (type == "Boolean") return value == "True" || value == "False";
    if (type == "Integer") {
        const size_t digits = !value.empty() && (value[0] == '-' || value[0] == '+') ? 1 : 0;
        return value.size() > digits &&
               value.find_first_not_of("0123456789", digits) == std::string::npos;
    }
    return (type != "Float" && type != "UI" && type != "Tap") || ParseNumber(value).has_value();
}

// What is wrong with a value, empty when nothing is.
std::string Objection(const std::string& value, const AmiParameter& parameter)
{
    if (!parameter.TakesValue() && !parameter.usage.empty())
        return "its Usage is " + parameter.usage + ", it is not meant to be set";
    if (!FitsType(value, parameter.type)) return "not of its type " + parameter.type;
    const std::vector<std::string>& format = parameter.format;
    if (format.size() < 2) return "";
    // "Range", typical, minimum, maximum; Increment and Steps go on with the step.
    if ((format[0] == "Range" || format[0] == "Increment" || format[0] == "Steps") &&
        format.size() >= 4) {
        const std::optional<double> number = ParseNumber(value);
        const std::optional<double> least = ParseNumber(format[2]);
        const std::optional<double> most = ParseNumber(format[3]);
        if (!number || !least || !most || (*least <= *number && *number <= *most)) return "";
        return "outside of its range, " + format[2] + " to " + format[3];
    }
    const bool choice = format[0] == "List" || format[0] == "Value" || format[0] == "Corner";
    const bool found = std::any_of(format.begin() + 1, format.end(),
                                   [&](const std::string& item) { return SameValue(value, item); });
    if (!choice || found) return "";
    return "none of the values that the file lists: " + Joined(format, 1, ", ");
}

[[noreturn]] void RefuseName(const std::string& name, const std::vector<std::string>& known,
                             const AmiFile& file)
{
    std::string text = "--set " + name + ": " + file.file + " has no such parameter";
    if (const std::optional<std::string> nearest = Nearest(name, known)) {
        text += "; did you mean " + *nearest + "?";
    } else {
        std::vector<std::string> shown(
            known.begin(),
            known.begin() + static_cast<std::ptrdiff_t>(std::min(known.size(), NamesShown)));
        if (shown.size() < known.size()) shown.emplace_back("...");
        text += "; it has " + Joined(shown, 0, ", ");
    }
    throw InputError(text);
}

}  // namespace

bool AmiParameter::TakesValue() const
{
    return usage == "In" || usage == "InOut";
}

AmiFile ReadAmiFile(const std::string& path)
{
    AmiFile file;
    file.file = path;
    ReadInChild(FindFileToRead(path, FILE_AMI), SendParameters,
                [&file](FrameFields frame) { Receive(file, frame); });
    return file;
}

std::vector<std::string> CheckSettings(const std::vector<Setting>& settings, const AmiFile& file)
{
    std::vector<std::string> warnings;
    std::vector<std::string> known;
    bool specific = false;
    for (const AmiParameter& parameter : file.parameters) {
        specific = specific || !parameter.reserved;
        if (!parameter.reserved || parameter.TakesValue()) known.push_back(parameter.name);
    }
    if (!specific) return warnings;
    for (const Setting& setting : settings) {
        const bool rooted = setting.path.size() > 1 && setting.path.front() == file.root;
        const std::string name = Joined(setting.path, rooted ? 1 : 0, ".");
        if (std::find(known.begin(), known.end(), name) == known.end())
            RefuseName(name, known, file);
        const auto parameter =
            std::find_if(file.parameters.begin(), file.parameters.end(),
                         [&name](const AmiParameter& row) { return row.name == name; });
        const std::string objection = Objection(setting.value, *parameter);
        if (!objection.empty())
            warnings.push_back("--set " + name + "=" + setting.value + ": " + objection);
    }
    return warnings;
}

}  // namespace quell
