// A self-contained HTML page: it opens from disk, makes no request, reads without scripts and
// prints. All texts may come from files and models; they are escaped here.
#ifndef QUELL_REPORT_PAGE_H
#define QUELL_REPORT_PAGE_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "quell/report/plot.h"

namespace quell {

// A cell of a table. Where it shows a number of the page's JSON, `json` is the JSON pointer to it.
struct PageCell {
    std::string text;
    std::string json = {};
    bool best = false;
    std::string link = {};  // id of a part of the page
};

struct PageTable {
    std::vector<std::string> heads;
    std::vector<std::vector<PageCell>> rows;  // the first cell is the row's name
    bool words = false;                       // more words than numbers: aligned to the left
};

// One line of a list of settings or results.
struct PageFact {
    std::string name;
    PageCell value;
    bool code = false;  // a string for programs
};

class Page {
public:
    Page(const std::string& title, const std::string& subtitle);

    void Section(const std::string& heading, const std::string& note = "",
                 const std::string& id = "");
    // What follows can be folded away, and is at first; until EndFold.
    void BeginFold(const std::string& id, const std::string& summary);
    void EndFold();
    void Facts(const std::vector<PageFact>& facts);
    void Table(const PageTable& table);
    void Paragraph(const std::string& text);
    // A plot that zooms where scripts run.
    void Plot(const LinePlot& plot);
    // A picture that stands still; svg is markup.
    void Picture(const std::string& id, const std::string& title, const std::string& svg,
                 const std::string& caption);

    size_t Size() const { return m_Content.size(); }  // bytes so far

    // The whole page, with the result for programs to read in <script id="result">.
    std::string Html(const nlohmann::ordered_json& result) const;

private:
    void Figures(bool open);  // figures in a row stand beside each other

    std::string m_Title;
    std::string m_Content;
    bool m_InFigures = false;
    bool m_HasPlots = false;
};

}  // namespace quell

#endif
