// Responses over time in a text table.
#ifndef QUELL_CHANNEL_CSV_H
#define QUELL_CHANNEL_CSV_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quell {

struct SampledResponses {
    double interval = 0;       // s; the mean of uneven steps
    std::vector<double> time;  // s; empty when the steps are equal
    std::vector<std::string> names;
    std::vector<std::vector<double>> columns;  // all of one length, at least two samples
};

// Fields are separated by commas, semicolons, tabs or blanks, whichever the first line has, in this
// order; `#` and `!` begin a comment. A first line that is no number names the columns.
// With a sample interval every column is a response, unless the names say that the first is the
// time; without one the first column is the time, in seconds or in the unit that its name ends
// with: "time (ns)", "time_ps". Steps count as equal to a twentieth of a step, so that rounded
// times pass. Throws InputError with name and line.
SampledResponses ParseCsv(std::string_view text, const std::string& name,
                          std::optional<double> sampleInterval);
// The same of a file, whose text is never in memory as a whole.
SampledResponses ReadCsv(const std::string& path, std::optional<double> sampleInterval);

}  // namespace quell

#endif
