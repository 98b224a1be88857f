// What a command says on standard error.
#include "quell/base/errors.h"

#include <iostream>

namespace quell {

namespace {

void PrintLine(const char* word, std::string text)
{
    for (char& c : text)
        if (c == '\n' || c == '\r') c = ' ';
    std::cerr << word << ": " << text << '\n';
}

}  // namespace

void PrintError(const std::string& text)
{
    PrintLine("quell", text);
}

void PrintWarning(const std::string& text)
{
    PrintLine("warning", text);
}

}  // namespace quell
