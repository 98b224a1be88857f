// Findings as JSON, for programs.
#include "quell/check/json_format.h"

#include "quell/base/json.h"

namespace quell {

namespace {

using Json = nlohmann::ordered_json;

template <typename Counts>
void AddCounts(Json& json, const Counts& counts)
{
    for (size_t k = 0; k < counts.size(); ++k)
        json[WordOf(static_cast<Severity>(k)).many] = counts[k];
}

Json OrNull(const std::string& text)
{
    return text.empty() ? Json(nullptr) : Json(text);
}

Json FindingJson(const Finding& finding)
{
    Json json;
    json["file"] = finding.file;
    json["line"] = finding.line == 0 ? Json(nullptr) : Json(finding.line);
    json["severity"] = WordOf(finding.severity).one;
    json["number"] = finding.number;
    json["asked"] = finding.asked;
    json["text"] = finding.text;
    return json;
}

// The object of a report up to its list of findings, which follow, separated by commas.
std::string ReportHead(const FileReport& report)
{
    Json json;
    json["file"] = report.name;
    json["type"] = OrNull(report.type);
    json["status"] = StatusWord(report.status);
    json["reason"] = OrNull(report.reason);
    json["declared_version"] = OrNull(report.declared);
    json["checked_as"] = OrNull(report.checkedAs);
    AddCounts(json, report.counts);
    std::string text = JsonAsciiLine(json);
    text.pop_back();
    return text + ",\"findings\":[";
}

Json TotalsJson(const Totals& totals)
{
    Json json;
    json["files"] = totals.files;
    json["without_errors"] = totals.inOrder;
    json["with_errors"] = totals.withErrors;
    json["beyond_known_version"] = totals.beyond;
    json["not_read"] = totals.notRead;
    json["reader_failed"] = totals.failed;
    AddCounts(json, totals.counts);
    return json;
}

}  // namespace

void JsonFormat::Begin(Output& output)
{
    output.Print("{\n\"files\": [");
}

void JsonFormat::Add(const Finding& finding, Spool& waiting)
{
    waiting.Append((waiting.Empty() ? "\n  " : ",\n  ") + JsonAsciiLine(FindingJson(finding)));
}

void JsonFormat::File(const CheckFile&, const FileReport& report, Spool& waiting, Output& output)
{
    output.Print((m_First ? "\n" : ",\n") + ReportHead(report));
    m_First = false;
    output.Print(waiting);
    output.Print("]}");
}

void JsonFormat::End(const Totals& totals, Output& output)
{
    output.Print("\n],\n\"total\": " + JsonAsciiLine(TotalsJson(totals)) + "\n}\n");
}

}  // namespace quell
