// A self-contained HTML page.
#include "quell/report/page.h"

#include "quell/report/assets.h"
#include "quell/report/markup.h"

namespace quell {

namespace {

// The browser's own guard: whatever a text smuggled in, nothing is loaded from anywhere.
constexpr const char* Policy =
    "default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'; img-src data:";

std::string CellTag(const std::string& tag, const PageCell& cell, const std::string& classes)
{
    std::string html = "<" + tag;
    const std::string all = classes + (cell.best ? (classes.empty() ? "best" : " best") : "");
    if (!all.empty()) html += " class=\"" + all + "\"";
    if (!cell.json.empty()) html += " data-json=\"" + Escaped(cell.json) + "\"";
    std::string text = Escaped(cell.text);
    if (!cell.link.empty()) text = "<a href=\"#" + Escaped(cell.link) + "\">" + text + "</a>";
    return html + ">" + text + "</" + tag + ">";
}

}  // namespace

Page::Page(const std::string& title, const std::string& subtitle) : m_Title(title)
{
    m_Content =
        "<h1>" + Escaped(title) + "</h1>\n<p class=\"soft\">" + Escaped(subtitle) + "</p>\n";
}

void Page::Figures(bool open)
{
    if (open && !m_InFigures) m_Content += "<div class=\"plots\">\n";
    if (!open && m_InFigures) m_Content += "</div>\n";
    m_InFigures = open;
}

void Page::Section(const std::string& heading, const std::string& note, const std::string& id)
{
    Figures(false);
    m_Content +=
        (id.empty() ? "<h2>" : "<h2 id=\"" + Escaped(id) + "\">") + Escaped(heading) + "</h2>\n";
    if (!note.empty()) m_Content += "<p class=\"soft\">" + Escaped(note) + "</p>\n";
}

void Page::BeginFold(const std::string& id, const std::string& summary)
{
    Figures(false);
    m_Content += "<details class=\"fold\" id=\"" + Escaped(id) + "\"><summary>" + Escaped(summary) +
                 "</summary>\n";
}

void Page::EndFold()
{
    Figures(false);
    m_Content += "</details>\n";
}

void Page::Paragraph(const std::string& text)
{
    Figures(false);
    m_Content += "<p>" + Escaped(text) + "</p>\n";
}

void Page::Facts(const std::vector<PageFact>& facts)
{
    Figures(false);
    m_Content += "<table class=\"facts\"><tbody>\n";
    for (const PageFact& fact : facts)
        m_Content += "<tr><th scope=\"row\">" + Escaped(fact.name) + "</th>" +
                     CellTag("td", fact.value, fact.code ? "code" : "") + "</tr>\n";
    m_Content += "</tbody></table>\n";
}

void Page::Table(const PageTable& table)
{
    Figures(false);
    m_Content += "<div class=\"scroll\"><table class=\"" +
                 std::string(table.words ? "words" : "figures") + "\"><thead><tr>";
    for (const std::string& head : table.heads)
        m_Content += "<th scope=\"col\">" + Escaped(head) + "</th>";
    m_Content += "</tr></thead><tbody>\n";
    for (const std::vector<PageCell>& row : table.rows) {
        m_Content += "<tr>";
        for (size_t k = 0; k < row.size(); ++k)
            m_Content += k == 0 ? CellTag("th", row[k], "") : CellTag("td", row[k], "");
        m_Content += "</tr>\n";
    }
    m_Content += "</tbody></table></div>\n";
}

void Page::Plot(const LinePlot& plot)
{
    Figures(true);
    m_HasPlots = true;
    m_Content += "<figure class=\"plot\" id=\"" + Escaped(plot.id) + "\"><h3>" +
                 Escaped(plot.title) + "</h3>\n<div class=\"still\">" +
                 PlotSvg(plot, SvgUse::InPage) +
                 "</div>\n<div class=\"live\"><div class=\"curves\"></div>"
                 "<div class=\"graph\"></div></div>\n<script type=\"application/json\">" +
                 ScriptJson(PlotJson(plot)) + "</script>\n";
    if (!plot.caption.empty())
        m_Content += "<figcaption>" + Escaped(plot.caption) + "</figcaption>";
    m_Content += "</figure>\n";
}

void Page::Picture(const std::string& id, const std::string& title, const std::string& svg,
                   const std::string& caption)
{
    Figures(true);
    m_Content += "<figure id=\"" + Escaped(id) + "\"><h3>" + Escaped(title) + "</h3>\n" + svg +
                 "<figcaption>" + Escaped(caption) + "</figcaption></figure>\n";
}

std::string Page::Html(const nlohmann::ordered_json& result) const
{
    const auto block = [](const char* tag, std::string_view text) {
        return "<" + std::string(tag) + ">\n" + std::string(text) + "\n</" + tag + ">\n";
    };
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
        std::string(Policy) +
        "\">\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
        Escaped(m_Title) + "</title>\n<link rel=\"icon\" href=\"data:,\">\n";
    if (m_HasPlots) html += block("style", DygraphStyle());
    html += block("style", PictureStyle()) + block("style", PageStyle()) + "</head><body>\n" +
            m_Content + (m_InFigures ? "</div>\n" : "");
    html += "<script type=\"application/json\" id=\"result\">" + ScriptJson(result) + "</script>\n";
    if (m_HasPlots) {
        html +=
            "<details><summary>Licence of dygraphs, which draws the plots that zoom</summary>"
            "<pre>" +
            Escaped(DygraphCopyright()) + "</pre></details>\n";
        html += block("script", DygraphScript()) + block("script", PageScript());
    }
    return html + "</body></html>\n";
}

}  // namespace quell
