// The command line of a link: its channels, its model, its eye. Shared by run and sweep.
#ifndef QUELL_LINK_OPTIONS_H
#define QUELL_LINK_OPTIONS_H

#include <string>
#include <vector>

#include "quell/channel/channel.h"
#include "quell/command/commands.h"
#include "quell/link/eye.h"
#include "quell/link/stage.h"

namespace quell {

struct LinkOptions {
    std::vector<std::string> aggressors;
    ChannelOptions channel;
    std::string ports;  // as given; becomes channel.ports
    ModelOptions model;
    std::vector<std::string> settings;  // as given
    LinkEyeOptions eye;
};

// The options must outlive the parsing. settingHelp describes --set. Returns the option --set.
CLI::Option* AddLinkOptions(CLI::App& command, LinkOptions& options,
                            const std::string& settingHelp);

// What numbers may look like, for the ends of help pages.
inline constexpr const char* NumberHelp =
    "Numbers take a scale letter (f p n u m k M G T) and their unit: 2mV, 2ps, 5Gbit/s; without\n"
    "them they are in V, s, bit/s.\n\n";

// What can only be judged when the whole line is read. Throws InputError.
void FinishLinkOptions(LinkOptions& options);

}  // namespace quell

#endif
