// A component file as a page to look at.
#include "quell/view/view_page.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <vector>

#include "IbisParser/cmn.h"
#include "IbisParser/cmpnt.h"
#include "IbisParser/ext.h"
#include "IbisParser/hdr.h"
#include "IbisParser/msel.h"
#include "IbisParser/pkgmdl.h"
#include "IbisParser/submdl.h"
#include "IbisParser/testdata.h"
#include "IbisParser/testload.h"
#include "quell/base/errors.h"
#include "quell/base/numbers.h"
#include "quell/base/printable.h"
#include "quell/reader/file_types.h"
#include "quell/report/page.h"
#include "quell/view/buffer_curves.h"
#include "quell/view/findings.h"
#include "quell/view/model_plots.h"

namespace quell {

namespace {

constexpr size_t OpenModels = 3;       // more models than these are folded away
constexpr size_t ShownFindings = 200;  // in one table
constexpr size_t ShownPins = 40;
// Beyond this size models are no longer drawn, in bytes.
constexpr size_t MostMarkup = 24U << 20;

// A list of the store in the order of the file.
template <typename Record>
std::vector<Record*> FileOrder(Record* head)
{
    std::vector<Record*> records;
    for (; head != nullptr; head = head->next)
        records.push_back(head);
    std::reverse(records.begin(), records.end());
    return records;
}

std::string CellText(double value, int state, const char* unit)
{
    return state == CELL_NUMBER ? UnitText(value, unit) : state == CELL_NA ? "NA" : "–";
}

std::vector<PageCell> RangeRow(const std::string& name, const RngRange& range, const char* unit)
{
    return {{name},
            {CellText(range.typ, range.typState, unit)},
            {CellText(range.min, range.minState, unit)},
            {CellText(range.max, range.maxState, unit)}};
}

const std::vector<std::string> CornerHeads = {"", "typ", "min", "max"};

// The ranges of a model that are given.
constexpr struct {
    const char* name;
    RngRange* Mdl::*range;
    const char* unit;
} Ranges[] = {
    {"[Voltage Range]", &Mdl::voltageRange, "V"},
    {"[Pullup Reference]", &Mdl::pullupRef, "V"},
    {"[Pulldown Reference]", &Mdl::pulldownRef, "V"},
    {"[POWER Clamp Reference]", &Mdl::powerClampRef, "V"},
    {"[GND Clamp Reference]", &Mdl::gndClampRef, "V"},
    {"[External Reference]", &Mdl::externalRef, "V"},
    {"[Temperature Range]", &Mdl::temperature, "°C"},
    {"C_comp", &Mdl::C_comp, "F"},
    {"C_comp_pullup", &Mdl::C_comp_pullup, "F"},
    {"C_comp_pulldown", &Mdl::C_comp_pulldown, "F"},
    {"C_comp_power_clamp", &Mdl::C_comp_power_clamp, "F"},
    {"C_comp_gnd_clamp", &Mdl::C_comp_gnd_clamp, "F"},
    {"[TTgnd]", &Mdl::TTgnd, "s"},
    {"[TTpower]", &Mdl::TTpower, "s"},
    {"[Rgnd]", &Mdl::Rgnd, "Ω"},
    {"[Rpower]", &Mdl::Rpower, "Ω"},
    {"[Rac]", &Mdl::Rac, "Ω"},
    {"[Cac]", &Mdl::Cac, "F"},
};

constexpr struct {
    const char* name;
    RngSingle Mdl::*value;
    const char* unit;
} Singles[] = {
    {"Vinl", &Mdl::Vinl, "V"},           {"Vinh", &Mdl::Vinh, "V"},
    {"Vmeas", &Mdl::Vmeas, "V"},         {"Vref", &Mdl::Vref, "V"},
    {"Rref", &Mdl::Rref, "Ω"},           {"Cref", &Mdl::Cref, "F"},
    {"Rref_diff", &Mdl::Rref_diff, "Ω"}, {"Cref_diff", &Mdl::Cref_diff, "F"},
};

// A model of the file with what belongs to it.
struct ModelEntry {
    const Mdl* model = nullptr;
    std::string id;
    std::vector<const Finding*> findings;
    size_t pinCount = 0;
    std::vector<std::string> pins;  // the first of them, "A1 of COMPONENT"

    void AddPin(const std::string& text)
    {
        if (++pinCount <= ShownPins) pins.push_back(text);
    }
};

const char* TypeText(const Mdl& model)
{
    const MdlTypeInfo* type = MDL_TypeInfo(model.type);
    return type != nullptr ? type->name : "no Model_type";
}

// "2 errors, 1 note"
std::string FindingsText(const std::vector<const Finding*>& findings)
{
    std::array<size_t, SeverityCount> counts = {};
    for (const Finding* finding : findings)
        ++counts[static_cast<size_t>(finding->severity)];
    return CountsText(counts);
}

size_t Count(const Vitbl* table)
{
    return table != nullptr ? static_cast<size_t>(table->count) : 0;
}

std::string PackageText(const RngRange* range, const char* unit)
{
    if (range == nullptr) return "–";
    std::string text = CellText(range->typ, range->typState, unit);
    if (range->minState != CELL_ABSENT || range->maxState != CELL_ABSENT)
        text += " (" + CellText(range->min, range->minState, unit) + ", " +
                CellText(range->max, range->maxState, unit) + ")";
    return text;
}

// Least and greatest of the values that pins have of their own.
std::string PinSpan(const Cmpnt& component, RngSingle Pin::*value, const char* unit)
{
    size_t count = 0;
    double least = 0, greatest = 0;
    for (const Pin* pin = component.pins; pin != nullptr; pin = pin->next) {
        const RngSingle& cell = pin->*value;
        if (cell.state != CELL_NUMBER) continue;
        least = count == 0 ? cell.value : std::min(least, cell.value);
        greatest = count == 0 ? cell.value : std::max(greatest, cell.value);
        ++count;
    }
    if (count == 0) return "–";
    return UnitText(least, unit) + " to " + UnitText(greatest, unit);
}

class ViewBuilder {
public:
    ViewBuilder(IbisRoot* root, const FileReport& report, const ViewRequest& request)
        : m_Root(root),
          m_Report(report),
          m_Request(request),
          m_Page(BaseName(request.file), Subtitle())
    {
        for (const Mdl* model : FileOrder(root->mdls)) {
            ModelEntry entry;
            entry.model = model;
            entry.id = "m" + std::to_string(m_Models.size() + 1);
            m_Models.push_back(std::move(entry));
        }
    }

    std::string Html()
    {
        AssignFindings();
        AssignPins();
        Select();
        if (!m_Request.note.empty()) m_Page.Paragraph(m_Request.note);
        if (m_Request.model.empty()) Overview();
        Packages();
        const bool folded = m_Shown.size() > OpenModels;
        if (folded) m_Page.Section("Models", "Each opens with a click.");
        size_t drawn = 0;
        for (const ModelEntry* entry : m_Shown) {
            if (m_Page.Size() > MostMarkup) break;
            ShowModel(*entry, folded);
            ++drawn;
        }
        if (drawn < m_Shown.size())
            m_Page.Paragraph("The last " + std::to_string(m_Shown.size() - drawn) +
                             " models are not drawn, to keep the page small; --model NAME shows "
                             "one of them.");
        return m_Page.Html(Result());
    }

private:
    std::string Subtitle() const
    {
        std::string text;
        const auto add = [&text](const char* name, const char* value) {
            if (value == nullptr || *value == '\0') return;
            text += (text.empty() ? "" : ", ") + std::string(name) + value;
        };
        const std::vector<Hdr*> headers = FileOrder(m_Root->hdrs);
        if (!headers.empty()) {
            add("IBIS ", headers.front()->ibisVer);
            add("revision ", headers.front()->fileRev);
            add("", headers.front()->date);
        }
        return text;
    }

    void AssignFindings()
    {
        ModelIndex index;
        for (const ModelEntry& entry : m_Models)
            index.AddModel(entry.model->name, entry.model->line);
        const auto addLines = [&index](const auto* head) {
            for (; head != nullptr; head = head->next)
                index.AddSection(head->line);
        };
        addLines(m_Root->cmpnts);
        addLines(m_Root->exts);
        addLines(m_Root->subMdls);
        addLines(m_Root->pkgMdls);
        addLines(m_Root->msels);
        addLines(m_Root->testData);
        addLines(m_Root->testLoads);
        for (const Finding& finding : m_Report.findings) {
            const bool own = finding.file == m_Report.name;
            const size_t model = own ? index.Find(finding) : ModelIndex::None;
            if (model == ModelIndex::None)
                m_FileFindings.push_back(&finding);
            else
                m_Models[model].findings.push_back(&finding);
        }
    }

    // Pins name models, or selectors that name several.
    void AssignPins()
    {
        std::map<std::string_view, size_t> models;
        for (size_t k = 0; k < m_Models.size(); ++k)
            models.emplace(m_Models[k].model->name, k);
        std::map<std::string_view, const Msel*> selectors;
        for (const Msel* selector = m_Root->msels; selector != nullptr; selector = selector->next)
            selectors.emplace(selector->name, selector);
        for (const Cmpnt* component : FileOrder(m_Root->cmpnts))
            for (const Pin* pin = component->pins; pin != nullptr; pin = pin->next) {
                if (pin->kind != PIN_MODEL) continue;
                const std::string text = std::string(pin->name) + " of " + component->name;
                const auto direct = models.find(pin->model);
                if (direct != models.end()) {
                    m_Models[direct->second].AddPin(text);
                    continue;
                }
                const auto selector = selectors.find(pin->model);
                if (selector == selectors.end()) continue;
                for (const MselRow* row = selector->second->rows; row != nullptr; row = row->next) {
                    const auto chosen = models.find(row->model);
                    if (chosen != models.end()) m_Models[chosen->second].AddPin(text);
                }
            }
    }

    void Select()
    {
        for (const ModelEntry& entry : m_Models)
            if (m_Request.model.empty() || entry.model->name == m_Request.model)
                m_Shown.push_back(&entry);
        if (m_Shown.empty() && !m_Request.model.empty())
            throw InputError(m_Request.file, 0, "has no model " + Printable(m_Request.model));
    }

    void FindingsTable(const std::vector<const Finding*>& findings,
                       const std::vector<std::string>& links = {},
                       const std::vector<std::string>& titles = {})
    {
        PageTable table;
        table.heads = {"Finding", "Line", "Message"};
        const bool linked = !links.empty();
        if (linked) table.heads.push_back("Picture");
        for (size_t k = 0; k < findings.size() && k < ShownFindings; ++k) {
            const Finding& finding = *findings[k];
            const std::string number =
                finding.number != 0 ? " " + std::to_string(finding.number) : "";
            std::vector<PageCell> row = {
                {WordOf(finding.severity).one + number},
                {finding.line != 0 ? std::to_string(finding.line) : ""},
                {finding.file == m_Report.name ? finding.text
                                               : finding.file + ": " + finding.text}};
            if (linked) {
                PageCell cell{titles[k]};
                cell.link = links[k];
                row.push_back(cell);
            }
            table.rows.push_back(std::move(row));
        }
        if (table.rows.empty()) return;
        table.words = true;
        m_Page.Table(table);
        if (findings.size() > ShownFindings)
            m_Page.Paragraph(std::to_string(findings.size() - ShownFindings) +
                             " more: quell check lists all of them.");
    }

    void Overview()
    {
        m_Page.Section("Findings", CountsText(m_Report.counts) +
                                       ". Those of a model stand with it, the others here.");
        FindingsTable(m_FileFindings);
        if (!m_Report.more.empty())
            m_Page.Paragraph(
                "Of each message the first ones are shown; quell check --format json "
                "lists all of them.");
        if (m_Models.empty()) {
            m_Page.Section("Models", "The file has no models.");
            return;
        }
        m_Page.Section("Overview", "Points of the V-I tables, numbers of waveforms.");
        PageTable table;
        table.heads = {"Model",     "Type",        "Pins",   "Pulldown", "Pullup",
                       "GND clamp", "POWER clamp", "Rising", "Falling",  "Findings"};
        for (const ModelEntry& entry : m_Models) {
            const Mdl& model = *entry.model;
            const auto waveforms = [](const Wvfrm* list) {
                size_t count = 0;
                for (; list != nullptr; list = list->next)
                    ++count;
                return count;
            };
            PageCell name{model.name};
            name.link = entry.id;
            std::vector<PageCell> row = {name, {TypeText(model)}};
            for (const size_t count :
                 {entry.pinCount, Count(model.pulldown), Count(model.pullup), Count(model.gndClamp),
                  Count(model.powerClamp), waveforms(model.rising), waveforms(model.falling)})
                row.push_back({count > 0 ? std::to_string(count) : "–"});
            row.push_back({FindingsText(entry.findings)});
            table.rows.push_back(std::move(row));
        }
        m_Page.Table(table);
    }

    // One row for each component: what holds for all pins, and the span of what pins have of
    // their own.
    void Packages()
    {
        const std::vector<Cmpnt*> components = FileOrder(m_Root->cmpnts);
        if (components.empty()) return;
        m_Page.Section("Packages",
                       "Typical values with minimum and maximum, and the span of those "
                       "that pins have of their own.");
        PageTable table;
        table.heads = {"Component", "Manufacturer", "Pins",  "R_pkg", "L_pkg",
                       "C_pkg",     "R_pin",        "L_pin", "C_pin"};
        table.words = true;
        for (const Cmpnt* component : components) {
            const Pkg none = {};
            const Pkg& package = component->package != nullptr ? *component->package : none;
            std::string name = component->name;
            if (component->packageModel[0] != '\0')
                name += ", package model " + std::string(component->packageModel);
            table.rows.push_back({{name},
                                  {component->manufacturer},
                                  {std::to_string(PIN_Count(component->pins))},
                                  {PackageText(package.R_pkg, "Ω")},
                                  {PackageText(package.L_pkg, "H")},
                                  {PackageText(package.C_pkg, "F")},
                                  {PinSpan(*component, &Pin::R, "Ω")},
                                  {PinSpan(*component, &Pin::L, "H")},
                                  {PinSpan(*component, &Pin::C, "F")}});
        }
        m_Page.Table(table);
    }

    void ModelFacts(const ModelEntry& entry)
    {
        const Mdl& model = *entry.model;
        std::vector<PageFact> facts = {{"Model_type", {TypeText(model)}},
                                       {"Line", {std::to_string(model.line)}}};
        for (const auto& single : Singles) {
            const RngSingle& cell = model.*single.value;
            if (cell.state != CELL_ABSENT)
                facts.push_back({single.name, {CellText(cell.value, cell.state, single.unit)}});
        }
        std::string pins;
        for (const std::string& pin : entry.pins)
            pins += (pins.empty() ? "" : ", ") + pin;
        if (entry.pinCount > ShownPins)
            pins += " and " + std::to_string(entry.pinCount - ShownPins) + " more";
        facts.push_back({"Pins", {pins.empty() ? "none" : pins}});
        std::string added;
        for (const AddSub* row : FileOrder(model.addSubs))
            added += (added.empty() ? "" : ", ") + std::string(row->submodel);
        if (!added.empty()) facts.push_back({"Submodels", {added}});
        m_Page.Facts(facts);

        PageTable table;
        table.heads = CornerHeads;
        for (const auto& row : Ranges)
            if (const RngRange* range = model.*row.range)
                table.rows.push_back(RangeRow(row.name, *range, row.unit));
        if (!table.rows.empty()) m_Page.Table(table);
    }

    void ShowRamp(const Ramp& ramp)
    {
        PageTable table;
        table.heads = {"Ramp into " + UnitText(ramp.R_load.value, "Ω") +
                           (ramp.R_load.state == CELL_NUMBER ? "" : " (assumed)"),
                       "typ", "min", "max"};
        const struct {
            const char* name;
            const RampSlope (&slopes)[CORNER_COUNT];
        } edges[] = {{"rising", ramp.rise}, {"falling", ramp.fall}};
        for (const auto& edge : edges) {
            std::vector<PageCell> row = {{edge.name}};
            for (const RampSlope& slope : edge.slopes)
                row.push_back({slope.state != CELL_NUMBER
                                   ? CellText(0, slope.state, "")
                                   : UnitText(slope.dV, "V") + " in " + UnitText(slope.dt, "s") +
                                         " (" + ShortText(slope.dV / slope.dt * 1e-9, 4) +
                                         " V/ns)"});
            table.rows.push_back(std::move(row));
        }
        m_Page.Table(table);
    }

    void ShowPoints(const std::vector<LoadLine>& loads, const std::vector<StateView>& states)
    {
        PageTable table;
        table.heads = {"Operating points", "typ", "min", "max"};
        for (const StateView& state : states)
            for (size_t k = 0; k < state.points.size(); ++k) {
                std::vector<PageCell> row = {
                    {std::string(StateName(state.state)) + ", " + LoadText(loads[k])}};
                for (const std::optional<OperatingPoint>& point : state.points[k])
                    row.push_back({!point
                                       ? "–"
                                       : UnitText(point->v, "V") + ", " + UnitText(point->i, "A") +
                                             (point->outside ? ", outside the tables" : "") +
                                             (point->several ? ", one of several" : "")});
                table.rows.push_back(std::move(row));
            }
        if (!table.rows.empty()) m_Page.Table(table);
    }

    void ShowModel(const ModelEntry& entry, bool folded)
    {
        const Mdl& model = *entry.model;
        const std::string title = std::string(model.name) + " (" + TypeText(model) + ")";
        if (folded)
            m_Page.BeginFold(entry.id, title + ": " + FindingsText(entry.findings));
        else
            m_Page.Section(title, FindingsText(entry.findings), entry.id);
        const std::vector<LoadLine> loads = LoadLines(model);
        const std::vector<StateView> states = StateViews(model, loads);
        std::vector<ModelPlot> plots = ModelPlots(model, entry.id, loads, states);

        std::vector<std::string> links, titles;
        for (const Finding* finding : entry.findings) {
            const size_t plot = TieFinding(*finding, plots);
            links.push_back(plot < plots.size() ? plots[plot].plot.id : "");
            titles.push_back(plot < plots.size() ? plots[plot].plot.title : "");
        }
        FindingsTable(entry.findings, links, titles);
        ModelFacts(entry);
        if (model.ramp != nullptr) ShowRamp(*model.ramp);
        ShowPoints(loads, states);
        if (plots.empty()) m_Page.Paragraph("The model has no tables.");
        for (const ModelPlot& plot : plots)
            m_Page.Plot(plot.plot);
        if (folded) m_Page.EndFold();
    }

    nlohmann::ordered_json Result() const
    {
        nlohmann::ordered_json json;
        json["file"] = m_Request.file;
        json["models"] = nlohmann::ordered_json::array();
        for (const ModelEntry& entry : m_Models)
            json["models"].push_back({{"name", entry.model->name},
                                      {"type", TypeText(*entry.model)},
                                      {"findings", entry.findings.size()}});
        return json;
    }

    IbisRoot* m_Root;
    const FileReport& m_Report;
    const ViewRequest& m_Request;
    Page m_Page;
    std::vector<ModelEntry> m_Models;
    std::vector<const ModelEntry*> m_Shown;
    std::vector<const Finding*> m_FileFindings;
};

}  // namespace

std::string ViewPage(IbisRoot* root, const FileReport& report, const ViewRequest& request)
{
    return ViewBuilder(root, report, request).Html();
}

}  // namespace quell
