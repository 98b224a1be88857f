// What an AMI parameter file describes, for people and for programs.
#include "quell/params/listing.h"

#include <algorithm>
#include <array>

#include "quell/base/printable.h"

namespace quell {

namespace {

constexpr size_t WidestColumn = 40;  // the last one may be wider

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

}  // namespace

std::string ParamsTable(const AmiFile& file)
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

nlohmann::ordered_json ParamsJson(const AmiFile& file)
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

}  // namespace quell
