// What the command lines of the subcommands share.
#include "quell/command/commands.h"

#include "quell/base/numbers.h"

namespace quell {

CLI::Option* AddNumber(CLI::App& command, const std::string& name, const std::string& unit,
                       double least, std::function<void(double)> store,
                       const std::string& description)
{
    const auto parse = [name, unit, least, store = std::move(store)](const std::string& text) {
        const std::optional<double> value = ParseQuantity(text, unit);
        if (!value) throw CLI::ValidationError(name, "'" + text + "' is not a number");
        if (!(*value > least))
            throw CLI::ValidationError(name, text + " is not greater than " + ShortText(least));
        store(*value);
    };
    return command.add_option_function<std::string>(name, parse, description)
        ->type_name(unit.empty() ? "NUMBER" : unit);
}

}  // namespace quell
