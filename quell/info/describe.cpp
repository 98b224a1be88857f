// What an IBIS, package, board or AMI parameter file holds, as JSON.
#include "quell/info/describe.h"

#include <cmath>
#include <string>
#include <vector>

#include "IbisParser/algmod.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/ebdmdl.h"
#include "IbisParser/errlog.h"
#include "IbisParser/ext.h"
#include "IbisParser/hdr.h"
#include "IbisParser/mdl.h"
#include "IbisParser/msel.h"
#include "IbisParser/parse.h"
#include "IbisParser/pkgmdl.h"
#include "IbisParser/submdl.h"
#include "IbisParser/testdata.h"
#include "IbisParser/testload.h"
#include "quell/base/errors.h"
#include "quell/base/json.h"
#include "quell/params/ami_tree.h"
#include "quell/reader/message_sink.h"
#include "quell/reader/read_in_child.h"

namespace quell {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* TypeNames[] = {"component", "package", "board", "parameters"};

Json Text(const char* text)
{
    return text == nullptr || *text == '\0' ? Json() : Json(text);
}

Json Number(double value, int state)
{
    return state == CELL_NUMBER && std::isfinite(value) ? Json(value) : Json();
}

Json Number(const RngSingle& cell)
{
    return Number(cell.value, cell.state);
}

Json Range(const RngRange* range)
{
    if (range == nullptr) return {};
    return {{"typ", Number(range->typ, range->typState)},
            {"min", Number(range->min, range->minState)},
            {"max", Number(range->max, range->maxState)}};
}

template <typename Record, typename Describe>
Json List(const Record* head, Describe describe)
{
    Json list = Json::array();
    for (const Record* item = head; item != nullptr; item = item->next)
        list.push_back(describe(*item));
    return list;
}

// Lists of the document store are newest first.
template <typename Record, typename Describe>
Json FileOrder(const Record* head, Describe describe)
{
    std::vector<const Record*> items;
    for (const Record* item = head; item != nullptr; item = item->next)
        items.push_back(item);
    Json list = Json::array();
    for (auto item = items.rbegin(); item != items.rend(); ++item)
        list.push_back(describe(**item));
    return list;
}

Json Names(const auto* head)
{
    return List(head, [](const auto& item) { return Json(item.name); });
}

Json Header(const Hdr* header)
{
    if (header == nullptr) return {};
    return {{"ibis_version", Text(header->ibisVer)},  {"file_name", Text(header->fileName)},
            {"file_rev", Text(header->fileRev)},      {"date", Text(header->date)},
            {"source", Text(header->source)},         {"notes", Text(header->notes)},
            {"disclaimer", Text(header->disclaimer)}, {"copyright", Text(header->copyright)}};
}

Json DescribePin(const Pin& pin)
{
    return {{"name", pin.name},       {"signal", Text(pin.signal)}, {"model", Text(pin.model)},
            {"R_pin", Number(pin.R)}, {"L_pin", Number(pin.L)},     {"C_pin", Number(pin.C)}};
}

Json DescribePair(const DiffPin& pair)
{
    return {{"pin", pair.name},
            {"inv_pin", pair.invPin},
            {"vdiff", Number(pair.vdiff)},
            {"tdelay",
             {{"typ", Number(pair.tdelayTyp)},
              {"min", Number(pair.tdelayMin)},
              {"max", Number(pair.tdelayMax)}}}};
}

Json DescribeSeries(const SerMap& pair)
{
    return {{"pin", pair.name},
            {"pin_2", pair.pin2},
            {"model", Text(pair.model)},
            {"group", Text(pair.group)}};
}

Json DescribeComponent(const Cmpnt& component)
{
    const Pkg* package = component.package;
    Json lumped;
    if (package != nullptr)
        lumped = {{"R_pkg", Range(package->R_pkg)},
                  {"L_pkg", Range(package->L_pkg)},
                  {"C_pkg", Range(package->C_pkg)}};
    return {{"name", component.name},
            {"line", component.line},
            {"manufacturer", Text(component.manufacturer)},
            {"package", lumped},
            {"package_model", Text(component.packageModel)},
            {"alternate_package_models", Names(component.alternates)},
            {"pins", List(component.pins, DescribePin)},
            {"differential_pairs", List(component.diffPins, DescribePair)},
            {"series_pins", List(component.seriesPins, DescribeSeries)},
            {"circuit_calls", Names(component.calls)}};
}

Json DescribeExecutable(const AlgModExec& row)
{
    return {{"platform", Text(row.platform)},
            {"compiler", Text(row.compiler)},
            {"bits", row.bits > 0 ? Json(row.bits) : Json()},
            {"code_file", Text(row.codeFile)},
            {"parameter_file", Text(row.parameterFile)}};
}

Json DescribeModel(const Mdl& model)
{
    const MdlTypeInfo* type = MDL_TypeInfo(model.type);
    const AlgModExec* executables = model.algMod != nullptr ? model.algMod->execs : nullptr;
    return {{"name", model.name},
            {"line", model.line},
            {"type", type != nullptr ? Json(type->name) : Json()},
            {"C_comp", Range(model.C_comp)},
            {"voltage_range", Range(model.voltageRange)},
            {"external_model", model.external != nullptr},
            {"executables", FileOrder(executables, DescribeExecutable)}};
}

Json DescribeSelector(const Msel& selector)
{
    return {{"name", selector.name},
            {"line", selector.line},
            {"models", List(selector.rows, [](const MselRow& row) {
                 return Json{{"name", row.model}, {"description", Text(row.description)}};
             })}};
}

Json DescribeSubModel(const SubMdl& submodel)
{
    return {
        {"name", submodel.name}, {"line", submodel.line}, {"type", Text(SUBMDL_TypeOf(&submodel))}};
}

Json DescribeMatrix(const Mtx* matrix)
{
    static const char* const kinds[] = {"unknown", "banded", "sparse", "full"};
    if (matrix == nullptr) return {};
    size_t elements = matrix->cellCount;
    for (int i = 0; i < matrix->n; ++i)
        elements += static_cast<size_t>(matrix->rows[i].count);
    return {{"kind", kinds[matrix->kind]},
            {"bandwidth", matrix->kind == MTX_BANDED ? Json(matrix->bandwidth) : Json()},
            {"elements", elements}};
}

Json DescribePackage(const PkgMdl& package)
{
    return {{"name", package.name},
            {"line", package.line},
            {"manufacturer", Text(package.manufacturer)},
            {"oem", Text(package.oem)},
            {"description", Text(package.description)},
            {"number_of_sections",
             package.numberOfSections > 0 ? Json(package.numberOfSections) : Json()},
            {"pins", Names(package.pins)},
            {"matrices",
             {{"resistance", DescribeMatrix(package.resistance)},
              {"inductance", DescribeMatrix(package.inductance)},
              {"capacitance", DescribeMatrix(package.capacitance)}}}};
}

Json DescribeBoardPath(const EbdPath& path)
{
    Json points = Json::array();
    int sections = 0;
    for (const SectItem* item = path.path.head; item != nullptr; item = item->next) {
        if (item->kind == SECT_SECTION) ++sections;
        if (item->kind == SECT_PIN) points.push_back({{"pin", item->text}});
        if (item->kind == SECT_NODE) points.push_back({{"node", item->text}});
    }
    return {{"name", path.name}, {"points", points}, {"sections", sections}};
}

Json DescribeBoard(const EbdMdl& board)
{
    const auto pin = [](const EbdPin& row) {
        return Json{{"name", row.name},
                    {"signal", Text(row.signal)},
                    {"path", row.path != nullptr ? Json(row.path->name) : Json()}};
    };
    const auto designator = [](const RefDes& row) {
        return Json{{"name", row.name}, {"file", Text(row.file)}, {"component", row.component}};
    };
    return {{"name", board.name},
            {"line", board.line},
            {"manufacturer", Text(board.manufacturer)},
            {"pins", List(board.pins, pin)},
            {"paths", List(board.paths, DescribeBoardPath)},
            {"designators", List(board.map, designator)}};
}

Json DescribeCircuit(const Ext& circuit)
{
    const auto corner = [](const ExtCornerRow& row) {
        return Json{{"file", Text(row.file)}, {"circuit", Text(row.circuit)}};
    };
    return {{"name", circuit.name},
            {"line", circuit.line},
            {"ports", Names(circuit.ports)},
            {"corners", List(circuit.corners, corner)}};
}

Json DescribeTestData(const TestData& data)
{
    return {{"name", data.name},
            {"line", data.line},
            {"type", Text(TESTDATA_KindName(data.type))},
            {"driver_model", Text(data.driver)},
            {"driver_model_inv", Text(data.driverInv)},
            {"test_load", Text(data.load)}};
}

Json DescribeTestLoad(const TestLoad& load)
{
    Json values = Json::object();
    for (int i = 0; i < LOAD_VALUE_COUNT; ++i)
        if (load.values[i].state == CELL_NUMBER)
            values[TESTLOAD_ValueName(i)] = Number(load.values[i]);
    return {{"name", load.name},
            {"line", load.line},
            {"type", Text(TESTDATA_KindName(load.type))},
            {"values", values},
            {"V_term1", Range(load.V_term1)},
            {"V_term2", Range(load.V_term2)},
            {"receiver_model", Text(load.receiver)},
            {"receiver_model_inv", Text(load.receiverInv)}};
}

void DescribeDocument(Json& json, const IbisRoot& root)
{
    json["header"] = Header(root.hdrs);
    json["components"] = FileOrder(root.cmpnts, DescribeComponent);
    json["models"] = FileOrder(root.mdls, DescribeModel);
    json["model_selectors"] = FileOrder(root.msels, DescribeSelector);
    json["submodels"] = FileOrder(root.subMdls, DescribeSubModel);
    json["package_models"] = FileOrder(root.pkgMdls, DescribePackage);
    json["boards"] = FileOrder(root.ebdMdls, DescribeBoard);
    json["external_circuits"] = FileOrder(root.exts, DescribeCircuit);
    json["test_data"] = FileOrder(root.testData, DescribeTestData);
    json["test_loads"] = FileOrder(root.testLoads, DescribeTestLoad);
}

// The names below a branch of the root, "Reserved_Parameters" or "Model_Specific".
void DescribeParameters(const std::string& file, Json& json)
{
    const AmiTree tree;
    const _tagBranchStruct* root = tree.Root() != nullptr ? BranchOf(*tree.Root()) : nullptr;
    if (tree.Result() != TREE_OK || root == nullptr)
        throw InputError(file, 0, "no parameter tree (see quell check)");
    json["root"] = Text(root->name);
    json["branches"] = Json::object();
    for (int i = 0; i < root->childCount; ++i) {
        const _tagBranchStruct* branch = BranchOf(root->children[i]);
        if (branch == nullptr) continue;
        Json names = Json::array();
        for (int k = 0; k < branch->childCount; ++k)
            if (const _tagBranchStruct* child = BranchOf(branch->children[k]))
                names.push_back(Text(child->name));
        json["branches"][branch->name] = names;
    }
}

// What the library holds of the file once it is read.
Json DescribeOpened(const Opening& opening)
{
    std::string first;  // message, for a file that cannot be read
    const MessageSink messages([&first](const ErrRecord& record) {
        if (first.empty()) first = record.text;
    });
    if (!INIT() || !ParseOpened(opening))
        throw InputError(opening.name, 0, first.empty() ? "it cannot be read" : first);
    unsigned long errors = 0;
    unsigned long warnings = 0;
    ERRLOG_GetCounts(nullptr, &errors, &warnings);
    Json json = {{"format", 1},
                 {"file", opening.name},
                 {"type", TypeNames[opening.type - FILE_IBS]},
                 {"errors", errors},
                 {"warnings", warnings}};
    if (!opening.version.empty()) json["read_as"] = opening.version;
    IbisRoot* root = nullptr;
    if (opening.type == FILE_AMI)
        DescribeParameters(opening.name, json);
    else if (IBIS_GetIBIS(&root))
        DescribeDocument(json, *root);
    FINI();
    return json;
}

}  // namespace

Json DescribeFile(const std::string& path)
{
    FileType type = FILE_IBS;
    if (!TypeOfName(path, type))
        throw InputError(path, 0, "the name ends in none of .ibs .pkg .ebd .ami");
    const FileToRead file = FindFileToRead(path, type);
    const auto work = [](const Opening& opening, FrameWriter& writer) {
        writer.Send(0, JsonLine(DescribeOpened(opening)));
        return 0;
    };
    std::string description;
    ReadInChild(file, work, [&description](FrameFields frame) {
        frame.Number();
        description = frame.Text();
    });
    Json json = Json::parse(description);
    if (!file.laterVersion.empty() && json["header"].is_object())
        json["header"]["ibis_version"] = file.laterVersion;
    return json;
}

}  // namespace quell
