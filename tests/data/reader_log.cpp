// Prints the whole log of one file: what reading it, checking it with the files that it names, and
// the totals give. With --places it prints instead where each message stands. The file stands in
// the working directory; its type is told by its extension.
#include <cstdio>
#include <cstring>

#include "IbisParser/errlog.h"
#include "IbisParser/parse.h"
#include "IbisParser/rng.h"

static int s_fileType(const char* name)
{
    static const char* const extensions[] = {".ibs", ".pkg", ".ebd", ".ami"};
    const char* extension = std::strrchr(name, '.');
    for (int type = FILE_IBS; extension != nullptr && type <= FILE_AMI; ++type)
        if (CMN_StrSameIC(extension, extensions[type - FILE_IBS])) return type;
    return 0;
}

// "E0530 12:1 (3) pin 'A1' typ": line and column of the item, the line of its record, what it is
// about, the corner; before it the name of a companion.
static void s_printPlace(const ErrRecord* record, void* user)
{
    static const char* const subjects[] = {
        "-",          "file",     "component", "pin",       "node",          "bus",   "group",
        "domain",     "selector", "model",     "submodel",  "package model", "board", "path",
        "designator", "circuit",  "test data", "test load", "parameter"};
    static const char* const corners[] = {"", " typ", " min", " max"};
    const char* own = static_cast<const char*>(user);
    if (std::strcmp(record->file, own) != 0 && record->file[0] != '\0')
        std::printf("%s: ", record->file);
    std::printf("%c%04u %lu:%u (%lu) %s '%s'%s\n", "BBEEWWCCNNI"[record->severity], record -> asked,
                record -> itemLine, record -> column, record -> recordLine,
                subjects[record->subject], record -> name, corners[record->corner + 1]);
}

int main(int argc, char** argv)
{
    const bool places = argc == 3 && std::strcmp(argv[1], "--places") == 0;
    char* name = argc == (places ? 3 : 2) ? argv[argc - 1] : nullptr;
    const int type = name != nullptr ? s_fileType(name) : 0;
    if (type == 0) {
        std::fputs("usage: reader_log [--places] FILE.ibs|.pkg|.ebd|.ami\n", stderr);
        return 2;
    }
    if (places) {
        ERRLOG_SetOutputFile(std::fopen("/dev/null", "w"));
        ERRLOG_SetSink(s_printPlace, name);
        PARSE_SuppressBanners(1);
    }
    if (!INIT()) return 1;
    if (PARSE(name, type)) TEST(type, 1);
    FINI();
    return 0;
}
