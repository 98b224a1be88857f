// Channels as the command line names them, and the impulse matrix made of them.
#ifndef QUELL_CHANNEL_CHANNEL_H
#define QUELL_CHANNEL_CHANNEL_H

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "quell/channel/csv.h"
#include "quell/channel/frequency_response.h"
#include "quell/channel/loss_line.h"
#include "quell/channel/through.h"
#include "quell/channel/treatment.h"
#include "quell/signal/time_grid.h"

namespace quell {

enum class ImpulseUnit { VoltPerSecond, VoltPerSample };

// Which columns of a table that quell itself wrote.
enum class OwnColumns { Before, After };

struct ChannelOptions {
    double bitRate = 5e9;                  // bit/s
    std::optional<double> samplesPerBit;   // else the victim's own sampling, or 16
    std::optional<PortOrder> ports;        // of the victim
    std::optional<double> sampleInterval;  // s, of tables without a time column
    ResponseKind response = ResponseKind::Impulse;
    ImpulseUnit unit = ImpulseUnit::VoltPerSecond;
    bool keepHighPass = false;             // of AC-coupled Touchstone files
    std::optional<OwnColumns> ownColumns;  // else those before the model
};

// Where a port order comes from. Assumed: the lines are found, but not which ends of them lie on
// one side.
enum class PortSource { Given, Found, Assumed, Victim };

// "given", "found", "assumed", "as the victim's".
const char* PortSourceText(PortSource source);

struct ThroughChannel {
    FrequencyResponse response;
    PortOrder ports;
    PortSource portSource = PortSource::Given;
    double reference = 50;  // ohm
};

// A channel as read, before it is brought onto the time grid.
struct ChannelSource {
    std::string name;  // as given
    std::variant<LossLine, ThroughChannel, SampledResponses> content;
    std::vector<std::string> warnings;
};

// One column of the impulse matrix.
struct Column {
    std::string name;    // "victim", "aggressor 1", ...
    std::string source;  // the channel as given, with the response's name where it has several
    std::vector<double> impulse;     // V/s
    std::optional<double> loss;      // dB at half the bit rate
    std::optional<double> delay;     // s, where it is known
    std::optional<PortOrder> ports;  // of a 2-port or 4-port
    PortSource portSource = PortSource::Given;
    std::optional<double> reference;  // ohm, with the ports
    Treatment treatment;
};

struct ImpulseMatrix {
    TimeGrid grid;
    std::vector<Column> columns;  // the victim first; all of one length, two unit intervals of
                                  // zeros at the end
    std::vector<std::string> warnings;

    size_t Rows() const { return columns.front().impulse.size(); }
};

// Reads "FILE.s2p", "FILE.s4p", "FILE.csv" or "loss:8dB@2.5GHz". A Touchstone name may be followed
// by its port order, "FILE.s4p:13,24". victim: the victim's port order, for crosstalk files; null
// for the victim itself. Throws InputError.
ChannelSource ReadChannel(const std::string& name, const ChannelOptions& options,
                          const PortOrder* victim);

// Reads all channels and puts them onto one time grid. A table's sampling makes the grid when it is
// the victim and no samples per bit are asked for, rounded up to whole samples per bit; that of
// uneven steps makes none. A table with several responses makes several columns. Of a table with a
// column "victim_before", as run writes them, the columns before the model are taken. Throws
// InputError.
ImpulseMatrix BuildImpulseMatrix(const std::string& victim,
                                 const std::vector<std::string>& aggressors,
                                 const ChannelOptions& options);

}  // namespace quell

#endif
