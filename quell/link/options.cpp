// The command line of a link.
#include "quell/link/options.h"

#include "quell/base/errors.h"
#include "quell/base/lines.h"
#include "quell/base/numbers.h"

namespace quell {

namespace {

constexpr double Swing = 1;  // V between the rails

constexpr std::pair<const char*, ResponseKind> ResponseKinds[] = {
    {"impulse", ResponseKind::Impulse},
    {"step", ResponseKind::Step},
    {"pulse", ResponseKind::Pulse}};

constexpr std::pair<const char*, bool> DcChoices[] = {{"auto", false}, {"keep", true}};

constexpr std::pair<const char*, OwnColumns> OwnColumnChoices[] = {{"before", OwnColumns::Before},
                                                                   {"after", OwnColumns::After}};

constexpr std::pair<const char*, ImpulseUnit> Units[] = {{"V/s", ImpulseUnit::VoltPerSecond},
                                                         {"V/sample", ImpulseUnit::VoltPerSample}};

}  // namespace

CLI::Option* AddLinkOptions(CLI::App& command, LinkOptions& options, const std::string& settingHelp)
{
    ChannelOptions& channel = options.channel;
    ModelOptions& model = options.model;
    LinkEyeOptions& eye = options.eye;

    command
        .add_option("--aggressor", options.aggressors,
                    "A channel that couples into the victim; may be repeated. FILE.s4p:13,24 gives "
                    "its ports, else a crosstalk file takes the victim's")
        ->allow_extra_args(false)
        ->type_name("CHANNEL");

    const char* timing = "Timing";
    AddNumber(
        command, "--bit-rate", "bit/s", 0, [&channel](double v) { channel.bitRate = v; },
        "Bit rate (default 5e9)")
        ->group(timing);
    AddNumber(
        command, "--samples-per-bit", "", 0, [&channel](double v) { channel.samplesPerBit = v; },
        "Samples per bit (default 16, or those of a table)")
        ->group(timing);

    const char* touchstone = "Touchstone files";
    command
        .add_option("--ports", options.ports,
                    "Port order of a 4-port: 13,24 goes in at ports 1 and 3 and out at 2 and 4 "
                    "(default: found where the file passes most)")
        ->type_name("ORDER")
        ->group(touchstone);
    AddChoice(command, "--dc", channel.keepHighPass, DcChoices,
              "A coupling capacitor: its plateau carried down to DC, or the file kept as it is "
              "(default auto)")
        ->group(touchstone);

    const char* tables =
        "Tables (.csv): a time column in s, \"time (ns)\" or the like, and responses";
    AddNumber(
        command, "--sample-interval", "s", 0, [&channel](double v) { channel.sampleInterval = v; },
        "Sample interval of a table without a time column")
        ->group(tables);
    AddChoice(command, "--response", channel.response, ResponseKinds,
              "What the table holds (default impulse)")
        ->group(tables);
    AddChoice(
        command, "--column", channel.ownColumns, OwnColumnChoices,
        "Of an impulse.csv that quell wrote: the responses before or after the model (default "
        "before)")
        ->group(tables);
    AddChoice(command, "--unit", channel.unit, Units, "Unit of impulse responses (default V/s)")
        ->group(tables);

    const char* models = "Model";
    command
        .add_option("--model", model.model,
                    "The model's shared library (default: the one of the kit)")
        ->type_name("FILE")
        ->group(models);
    command
        .add_option("--ami", model.ami,
                    "Its parameter file, for the root name (default: beside the model, same stem)")
        ->type_name("FILE")
        ->group(models);
    CLI::Option* set = command.add_option("--set", options.settings, settingHelp)
                           ->allow_extra_args(false)
                           ->type_name("NAME=VALUE")
                           ->group(models);
    command
        .add_option("--params", model.parameters, "The whole parameter string, passed unchanged")
        ->type_name("STRING")
        ->excludes(set)
        ->group(models);
    AddNumber(
        command, "--timeout", "s", 0, [&model](double v) { model.timeout = v; },
        "Time that the model may take (default 60)")
        ->group(models);
    const char* eyes = "Statistical eye";
    AddNumber(
        command, "--ber", "", 0, [&eye](double v) { eye.errorRate = v; },
        "Bit error rate at which height and width are told (default 1e-12)")
        ->group(eyes);
    AddNumber(
        command, "--noise", "V", 0, [&eye](double v) { eye.eye.noise = v; },
        "Standard deviation of Gaussian noise at the receiver")
        ->group(eyes);
    AddNumber(
        command, "--rj", "s", 0, [&eye](double v) { eye.eye.randomJitter = v; },
        "Standard deviation of random jitter")
        ->group(eyes);
    AddNumber(
        command, "--dj", "s", 0, [&eye](double v) { eye.eye.dualDirac = v; },
        "Dual-Dirac jitter, peak to peak")
        ->group(eyes);
    return set;
}

void FinishLinkOptions(LinkOptions& options)
{
    if (!options.ports.empty()) {
        options.channel.ports = ParsePortOrder(options.ports);
        if (!options.channel.ports)
            throw InputError("--ports " + Quoted(options.ports) +
                             ": expected 13,24 (in at ports 1 and 3, out at 2 and 4) or 1,2");
    }
    if (!(options.eye.errorRate < 0.5))
        throw InputError("--ber: an error rate lies between 0 and 0.5");
    const double bit = 1 / options.channel.bitRate;
    const EyeOptions& eye = options.eye.eye;
    if (eye.noise > Swing)
        throw InputError("--noise " + UnitText(eye.noise, "V") +
                         ": beyond the swing of 1 V between the rails");
    for (const auto& [name, jitter] :
         {std::pair("--rj ", eye.randomJitter), {"--dj ", eye.dualDirac}})
        if (jitter > bit)
            throw InputError(name + UnitText(jitter, "s") + ": beyond the unit interval of " +
                             UnitText(bit, "s"));
}

}  // namespace quell
