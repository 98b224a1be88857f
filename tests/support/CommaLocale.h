// A host locale in which numbers are written with a decimal comma.
#ifndef TESTS_SUPPORT_COMMALOCALE_H
#define TESTS_SUPPORT_COMMALOCALE_H

#include <clocale>
#include <cstdlib>
#include <string>

#include "tests/support/TempDir.h"

// Sets a locale whose decimal separator is a comma: an installed one, else one that is compiled
// from the C library's sources. Null when there is neither.
inline const char* SetCommaLocale(const TempDir& dir)
{
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8", "de_DE"})
        if (std::setlocale(LC_ALL, name) != nullptr) return name;
    const std::string compile =
        "localedef -i de_DE -f UTF-8 " + dir.Path() + "de_DE.UTF-8 >" + dir.Path() + "log 2>&1";
    if (std::system(compile.c_str()) != 0) return nullptr;
    setenv("LOCPATH", dir.Path().c_str(), 1);
    return std::setlocale(LC_ALL, "de_DE.UTF-8");
}

#endif
