// The contents of a file on one screen, for people.
#include "quell/info/screen.h"

#include <algorithm>
#include <array>
#include <map>
#include <sstream>
#include <vector>

#include "quell/base/numbers.h"
#include "quell/base/printable.h"

namespace quell {

namespace {

using Json = nlohmann::ordered_json;

constexpr size_t Width = 100;  // columns
constexpr size_t Rows = 10;    // of a table
constexpr size_t InFull = 2;   // components and selectors of which everything is shown
constexpr size_t Column = 32;  // widest column but the last

using Row = std::vector<std::string>;

std::string String(const Json& value)
{
    return value.is_string() ? Printable(value.get<std::string>()) : std::string();
}

std::string Cut(const std::string& text, size_t length)
{
    return text.size() <= length ? text : text.substr(0, length - 3) + "...";
}

std::string Count(size_t count, const char* one, const char* many)
{
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

// The first line that holds anything, with a mark where more follow.
std::string FirstLine(const std::string& text)
{
    const size_t begin = text.find_first_not_of(" \n");
    if (begin == std::string::npos) return "";
    const size_t end = text.find('\n', begin);
    const bool more = text.find_first_not_of(" \n", end) != std::string::npos;
    return text.substr(begin, end - begin) + (more ? " ..." : "");
}

// Rows below a title, columns aligned; nothing for no rows.
void PrintTable(std::ostream& out, const std::string& title, const std::vector<Row>& rows)
{
    if (rows.empty()) return;
    out << title << '\n';
    const size_t shown = std::min(rows.size(), Rows);
    std::vector<size_t> widths;
    for (size_t i = 0; i < shown; ++i) {
        widths.resize(std::max(widths.size(), rows[i].size()));
        for (size_t k = 0; k < rows[i].size(); ++k)
            widths[k] = std::min(Column, std::max(widths[k], rows[i][k].size()));
    }
    for (size_t i = 0; i < shown; ++i) {
        std::string line = "   ";
        for (size_t k = 0; k < rows[i].size(); ++k) {
            const bool last = k + 1 == rows[i].size();
            std::string cell = last ? rows[i][k] : Cut(rows[i][k], Column);
            if (!last) cell.resize(std::max(cell.size(), widths[k]), ' ');
            line += ' ' + cell + (last ? "" : " ");
        }
        while (line.back() == ' ')
            line.pop_back();
        out << Cut(line, Width) << '\n';
    }
    if (rows.size() > shown) out << "    ... " << rows.size() - shown << " more\n";
}

// Names in one cell, as many as fit on the line with their number told in any case.
std::string Join(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : " ") + name;
    return text;
}

std::string Typical(const Json& range, const char* unit)
{
    if (!range.is_object() || !range["typ"].is_number()) return "-";
    return UnitText(range["typ"].get<double>(), unit);
}

void PrintHeader(std::ostream& out, const Json& file)
{
    const Json& header = file["header"];
    if (!header.is_object()) return;
    Row first;
    constexpr std::array<std::array<const char*, 2>, 4> fields = {
        {{"IBIS", "ibis_version"}, {"file", "file_name"}, {"rev", "file_rev"}, {"date", "date"}}};
    std::string line;
    for (const auto& [title, key] : fields)
        if (header[key].is_string())
            line += (line.empty() ? "" : ", ") + std::string(title) + ' ' + String(header[key]);
    if (!line.empty()) out << "  " << Cut(line, Width - 2) << '\n';
    for (const char* key : {"source", "copyright"})
        if (header[key].is_string()) {
            const std::string text = Printable(FirstLine(header[key].get<std::string>()));
            if (!text.empty())
                out << "  " << Cut(std::string(key) + ": " + text, Width - 2) << '\n';
        }
}

// Pins by what stands in their model column, in the order in which it first occurs.
void PrintPins(std::ostream& out, const Json& component,
               const std::map<std::string, std::string>& kinds)
{
    std::vector<std::string> order;
    std::map<std::string, std::vector<std::string>> pins;
    for (const Json& pin : component["pins"]) {
        const std::string model = String(pin["model"]);
        if (pins[model].empty()) order.push_back(model);
        pins[model].push_back(String(pin["name"]));
    }
    std::vector<Row> rows;
    for (const std::string& model : order) {
        const auto kind = kinds.find(model);
        rows.push_back({model, kind != kinds.end() ? kind->second : "",
                        Count(pins[model].size(), "pin", "pins"), Join(pins[model])});
    }
    PrintTable(out, "  " + Count(component["pins"].size(), "pin", "pins") + " by model", rows);
}

void PrintComponent(std::ostream& out, const Json& component,
                    const std::map<std::string, std::string>& kinds)
{
    out << "Component " << String(component["name"]);
    if (component["manufacturer"].is_string()) out << ", " << String(component["manufacturer"]);
    out << '\n';
    const Json& package = component["package"];
    if (package.is_object())
        out << "  package: R " << Typical(package["R_pkg"], "ohm") << ", L "
            << Typical(package["L_pkg"], "H") << ", C " << Typical(package["C_pkg"], "F") << '\n';
    if (component["package_model"].is_string())
        out << "  package model: " << String(component["package_model"]) << '\n';
    std::vector<std::string> alternates;
    for (const Json& name : component["alternate_package_models"])
        alternates.push_back(String(name));
    if (!alternates.empty()) out << "  or: " << Cut(Join(alternates), Width - 6) << '\n';
    PrintPins(out, component, kinds);
    std::vector<Row> pairs;
    for (const Json& pair : component["differential_pairs"]) {
        const Json& vdiff = pair["vdiff"];
        pairs.push_back({String(pair["pin"]), String(pair["inv_pin"]),
                         vdiff.is_number() ? UnitText(vdiff.get<double>(), "V") : "-"});
    }
    PrintTable(out, "  " + Count(pairs.size(), "differential pair", "differential pairs"), pairs);
    std::vector<Row> series;
    for (const Json& pair : component["series_pins"])
        series.push_back({String(pair["pin"]), String(pair["pin_2"]), String(pair["model"])});
    PrintTable(out, "  " + Count(series.size(), "series connection", "series connections"), series);
}

std::string MatrixText(const Json& matrices)
{
    std::string text;
    for (const auto& [name, matrix] : matrices.items())
        if (matrix.is_object())
            text += (text.empty() ? "" : ", ") + String(matrix["kind"]) + ' ' + name;
    return text;
}

void PrintPackages(std::ostream& out, const Json& file)
{
    std::vector<Row> rows;
    for (const Json& package : file["package_models"]) {
        std::string contents = MatrixText(package["matrices"]);
        if (package["number_of_sections"].is_number())
            contents = "sections, up to " + package["number_of_sections"].dump() + " a pin";
        rows.push_back({String(package["name"]), Count(package["pins"].size(), "pin", "pins"),
                        String(package["manufacturer"]), contents});
    }
    PrintTable(out, "Package models", rows);
}

void PrintBoards(std::ostream& out, const Json& file)
{
    for (const Json& board : file["boards"]) {
        out << "Board " << String(board["name"]);
        if (board["manufacturer"].is_string()) out << ", " << String(board["manufacturer"]);
        out << "\n  " << Count(board["pins"].size(), "pin", "pins") << '\n';
        std::vector<Row> paths;
        for (const Json& path : board["paths"]) {
            std::vector<std::string> points;
            for (const Json& point : path["points"])
                points.push_back(String(point.begin().value()));
            paths.push_back({String(path["name"]),
                             Count(path["sections"].get<size_t>(), "section", "sections"),
                             Join(points)});
        }
        PrintTable(out, "  " + Count(paths.size(), "path", "paths"), paths);
        std::vector<Row> designators;
        for (const Json& row : board["designators"])
            designators.push_back(
                {String(row["name"]), String(row["file"]), String(row["component"])});
        PrintTable(out, "  " + Count(designators.size(), "designator", "designators"), designators);
    }
}

// What a pin's model column may name, with its kind.
std::map<std::string, std::string> Kinds(const Json& file)
{
    std::map<std::string, std::string> kinds;
    for (const Json& model : file["models"])
        kinds.emplace(String(model["name"]), String(model["type"]));
    for (const Json& selector : file["model_selectors"])
        kinds.emplace(String(selector["name"]), "selector");
    return kinds;
}

// Every component on a line, then the first one in full.
void PrintComponents(std::ostream& out, const Json& file)
{
    const std::map<std::string, std::string> kinds = Kinds(file);
    const Json& components = file["components"];
    if (components.size() <= InFull) {
        for (const Json& component : components)
            PrintComponent(out, component, kinds);
        return;
    }
    std::vector<Row> rows;
    for (const Json& component : components)
        rows.push_back({String(component["name"]), Count(component["pins"].size(), "pin", "pins"),
                        Count(component["differential_pairs"].size(), "differential pair",
                              "differential pairs"),
                        String(component["package_model"])});
    PrintTable(out, std::to_string(components.size()) + " components; the first in full below",
               rows);
    PrintComponent(out, components[0], kinds);
}

void PrintSelectors(std::ostream& out, const Json& file)
{
    const Json& selectors = file["model_selectors"];
    const bool inFull = selectors.size() <= InFull;
    std::vector<Row> lines;
    for (const Json& selector : selectors) {
        std::vector<Row> rows;
        std::vector<std::string> names;
        for (const Json& row : selector["models"]) {
            rows.push_back({String(row["name"]), String(row["description"])});
            const std::string description = String(row["description"]);
            names.push_back(String(row["name"]) +
                            (description.empty() ? "" : " (" + description + ")"));
        }
        if (inFull) PrintTable(out, "Model selector " + String(selector["name"]), rows);
        lines.push_back(
            {String(selector["name"]), Count(names.size(), "model", "models"), Join(names)});
    }
    if (!inFull) PrintTable(out, "Model selectors", lines);
}

// How many models of each type, in the order in which the types first occur.
void PrintModels(std::ostream& out, const Json& file)
{
    std::vector<std::string> order;
    std::map<std::string, size_t> counts;
    for (const Json& model : file["models"]) {
        const std::string type = model["type"].is_string() ? String(model["type"]) : "no type";
        if (counts[type]++ == 0) order.push_back(type);
    }
    std::string text;
    for (const std::string& type : order)
        text += (text.empty() ? ": " : ", ") + std::to_string(counts[type]) + ' ' + type;
    if (!order.empty())
        out << Cut(Count(file["models"].size(), "model", "models") + text, Width) << '\n';
}

void PrintExecutables(std::ostream& out, const Json& file)
{
    std::vector<Row> rows;
    for (const Json& model : file["models"])
        for (const Json& row : model["executables"])
            rows.push_back({String(model["name"]),
                            String(row["platform"]) + ' ' +
                                (row["bits"].is_number() ? row["bits"].dump() + " bit" : ""),
                            String(row["code_file"]), String(row["parameter_file"])});
    PrintTable(out, "Code and parameter files", rows);
}

void PrintNamed(std::ostream& out, const Json& file, const char* key, const char* title,
                std::initializer_list<const char*> columns)
{
    std::vector<Row> rows;
    for (const Json& item : file[key]) {
        Row row = {String(item["name"])};
        for (const char* column : columns)
            row.push_back(String(item[column]));
        rows.push_back(row);
    }
    PrintTable(out, title, rows);
}

void PrintParameters(std::ostream& out, const Json& file)
{
    out << "  root: " << String(file["root"]) << '\n';
    for (const auto& [branch, names] : file["branches"].items()) {
        std::vector<std::string> list;
        for (const Json& name : names)
            list.push_back(String(name));
        out << "  " << Cut(branch + ": " + Join(list), Width - 2) << '\n';
    }
}

}  // namespace

std::string InfoScreen(const Json& file)
{
    std::ostringstream out;
    const size_t errors = file["errors"].get<size_t>();
    const size_t warnings = file["warnings"].get<size_t>();
    const bool isParameters = file["type"] == "parameters";
    out << String(file["file"]) << ": " << (isParameters ? "AMI parameter" : String(file["type"]))
        << " file";
    if (file.contains("read_as")) out << ", read as IBIS " << String(file["read_as"]);
    if (errors + warnings > 0)
        out << ", read with " << Count(errors, "error", "errors") << " and "
            << Count(warnings, "warning", "warnings") << " (quell check lists them)";
    out << '\n';
    if (isParameters) {
        PrintParameters(out, file);
        return out.str();
    }
    PrintHeader(out, file);
    PrintComponents(out, file);
    PrintSelectors(out, file);
    PrintModels(out, file);
    PrintNamed(out, file, "submodels", "Submodels", {"type"});
    PrintPackages(out, file);
    PrintBoards(out, file);
    PrintNamed(out, file, "external_circuits", "External circuits", {});
    PrintNamed(out, file, "test_data", "Test data", {"type", "driver_model", "test_load"});
    PrintNamed(out, file, "test_loads", "Test loads", {"type", "receiver_model"});
    PrintExecutables(out, file);
    return out.str();
}

}  // namespace quell
