// quell params: what an AMI parameter file describes.
#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>

#include "quell/base/errors.h"
#include "quell/base/json.h"
#include "quell/base/printable.h"
#include "quell/command/commands.h"
#include "quell/params/ami_file.h"

namespace quell {

namespace {

constexpr size_t WidestColumn = 40;  // the last one may be wider

struct ParamsOptions {
    std::string file;
    bool json = false;
};

std::string FormatText(const AmiParameter& parameter)
{
    std::string text;
    for (const std::string& item : parameter.format)
        text += (text.empty() ? "" : " ") + (item.empty() ? "\"\"" : item);
    return text;
}

constexpr const char* Titles[] = {"name", "usage", "type", "format", "default", "description"};
constexpr size_t Columns = std::size(Titles);

using Row = std::array<std::string, Columns>;

Row RowOf(const AmiParameter& parameter)
{
    Row row = {parameter.name,        parameter.usage,        parameter.type,
               FormatText(parameter), parameter.defaultValue, parameter.description};
    for (std::string& cell : row)
        cell = cell.empty() ? "-" : Printable(cell);
    return row;
}

std::string Line(const Row& row, const std::array<size_t, Columns>& widths)
{
    std::string line;
    for (size_t k = 0; k < Columns; ++k) {
        line += row[k];
        if (k + 1 == Columns) break;
        const size_t width = PrintedWidth(row[k]);
        line.append(widths[k] > width ? widths[k] - width : 0, ' ');
        line += "  ";
    }
    return line + "\n";
}

std::string TableText(const AmiFile& file)
{
    std::array<size_t, Columns> widths = {};
    Row titles;
    for (size_t k = 0; k < Columns; ++k) {
        titles[k] = Titles[k];
        widths[k] = titles[k].size();
    }
    for (const AmiParameter& parameter : file.parameters) {
        const Row row = RowOf(parameter);
        for (size_t k = 0; k < Columns; ++k)
            widths[k] = std::max(widths[k], std::min(PrintedWidth(row[k]), WidestColumn));
    }
    std::string text = Printable(file.root) + "\n";
    for (const bool reserved : {true, false}) {
        std::string rows;
        for (const AmiParameter& parameter : file.parameters)
            if (parameter.reserved == reserved) rows += Line(RowOf(parameter), widths);
        if (rows.empty()) continue;
        text += std::string("\n") + (reserved ? "Reserved_Parameters" : "Model_Specific") + "\n" +
                Line(titles, widths) + rows;
    }
    if (file.parameters.empty()) text += "\nno parameters\n";
    return text;
}

nlohmann::ordered_json FileJson(const AmiFile& file)
{
    nlohmann::ordered_json json;
    json["file"] = file.file;
    json["root"] = file.root;
    json["parameters"] = nlohmann::ordered_json::array();
    for (const AmiParameter& parameter : file.parameters) {
        nlohmann::ordered_json row;
        row["name"] = parameter.name;
        row["branch"] = parameter.reserved ? "Reserved_Parameters" : "Model_Specific";
        row["usage"] = parameter.usage;
        row["type"] = parameter.type;
        row["format"] = parameter.format;
        row["default"] = parameter.defaultValue;
        row["description"] = parameter.description;
        json["parameters"].push_back(std::move(row));
    }
    json["problems"] = file.problems;
    return json;
}

int RunParams(const ParamsOptions& options)
{
    const AmiFile file = ReadAmiFile(options.file);
    if (file.parameters.empty() && !file.problems.empty())
        throw InputError(options.file, 0, "no parameter tree: " + file.problems.front());
    for (const std::string& problem : file.problems)
        PrintWarning(options.file + ": " + problem);
    std::cout << (options.json ? JsonText(FileJson(file)) : TableText(file));
    return EXIT_DONE;
}

}  // namespace

void AddParams(CLI::App& app, int& exitCode)
{
    CLI::App& params = *app.add_subcommand("params", "Show what an AMI parameter file describes");
    const auto options = std::make_shared<ParamsOptions>();
    params.add_option("file", options->file, "The parameter file, .ami")
        ->required()
        ->type_name("FILE");
    params.add_flag("--json", options->json, "Print the parameters as JSON");
    params.footer("Exit code: 0 done, 2 wrong usage, or a file without a parameter tree.");
    params.callback([options, &exitCode] { exitCode = RunParams(*options); });
}

}  // namespace quell
