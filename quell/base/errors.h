// What goes wrong in a command, the exit code that it ends with, and what it says of it.
#ifndef QUELL_BASE_ERRORS_H
#define QUELL_BASE_ERRORS_H

#include <stdexcept>
#include <string>

namespace quell {

enum ExitCode {
    EXIT_DONE = 0,
    EXIT_FINDINGS = 1,       // a check found errors
    EXIT_BAD_INPUT = 2,      // wrong usage or unreadable input
    EXIT_READER_FAILED = 3,  // the reader of a file crashed or did not come to an end
    EXIT_MODEL_FAILED = 3,   // the model reported failure
    EXIT_MODEL_BROKEN = 4,   // the model crashed or did not come to an end
};

// Ends a command with one line on standard error and its exit code.
class CommandError : public std::runtime_error {
public:
    CommandError(ExitCode code, const std::string& line) : std::runtime_error(line), m_Code(code) {}
    ExitCode Code() const { return m_Code; }

private:
    ExitCode m_Code;
};

// Wrong usage or unreadable input. The place is a file name or empty; line 0 means the whole file.
class InputError : public CommandError {
public:
    explicit InputError(const std::string& what) : CommandError(EXIT_BAD_INPUT, what) {}
    InputError(const std::string& file, size_t line, const std::string& what)
        : CommandError(EXIT_BAD_INPUT, line == 0 ? file + ": " + what
                                                 : file + ":" + std::to_string(line) + ": " + what)
    {
    }
};

// One line on standard error: "quell: TEXT", "warning: TEXT". Line ends in it become blanks.
void PrintError(const std::string& text);
void PrintWarning(const std::string& text);

}  // namespace quell

#endif
