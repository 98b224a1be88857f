// Prints the whole log of one file: what reading it, checking it with the files that it names, and
// the totals give. The file stands in the working directory; its type is told by its extension.
#include <cstdio>
#include <cstring>

#include "IbisParser/parse.h"

static int s_fileType(const char* name)
{
    static const char* const extensions[] = {".ibs", ".pkg", ".ebd", ".ami"};
    const char* extension = std::strrchr(name, '.');
    for (int type = FILE_IBS; extension != nullptr && type <= FILE_AMI; ++type)
        if (CMN_StrSameIC(extension, extensions[type - FILE_IBS])) return type;
    return 0;
}

int main(int argc, char** argv)
{
    const int type = argc == 2 ? s_fileType(argv[1]) : 0;
    if (type == 0) {
        std::fputs("usage: reader_log FILE.ibs|.pkg|.ebd|.ami\n", stderr);
        return 2;
    }
    if (!INIT()) return 1;
    if (PARSE(argv[1], type)) TEST(type, 1);
    FINI();
    return 0;
}
