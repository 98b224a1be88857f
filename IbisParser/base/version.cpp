#include "IbisParser/base/version.h"

#include <cstring>
#include <iterator>

#include "IbisParser/parse.h"

// clang-format off
static const VersionRow s_versions[] = {
//                    limits: file           sub-  curve  wave-
//    text   class line      name  signal  model  points points
    { "2.0",  2,    80,    {  12,   20,     20,    100,   100 } },
    { "2.1",  2,    80,    {  12,   20,     20,    100,   100 } },
    { "3.0",  3,    80,    {  24,   20,     20,    100,   100 } },
    { "3.1",  3,    80,    {  24,   20,     20,    100,   100 } },
    { "3.2",  3,    80,    {  24,   20,     20,    100,   100 } },
    { "4.0",  4,   120,    {  44,   40,     20,    100,  1000 } },
    { "4.1",  4,   120,    {  44,   40,     20,    100,  1000 } },
    { "4.2",  4,   120,    {  44,   40,     20,    100,  1000 } },
    { "5.0",  5,   120,    {  44,   40,     40,    100,  1000 } },
};
// clang-format on

const VersionRow* VERSION_Find(const char* text)
{
    for (const VersionRow& row : s_versions)
        if (std::strcmp(row.text, text) == 0) return &row;
    return nullptr;
}

const VersionRow* VERSION_OfClass(int versionClass)
{
    const VersionRow* found = nullptr;
    for (const VersionRow& row : s_versions)
        if (row.versionClass <= versionClass || row.versionClass == s_versions[0].versionClass)
            found = &row;
    return found;
}

const VersionRow* VERSION_Latest()
{
    return std::end(s_versions) - 1;
}

std::span<const VersionRow> VERSION_Rows()
{
    return s_versions;
}

const char* VERSION_Since(int versionClass)
{
    for (const VersionRow& row : s_versions)
        if (row.versionClass >= versionClass) return row.text;
    return VERSION_Latest()->text;
}

int VERSION_Probe(const char* text)
{
    if (*text == '1') return 1;
    int found = 0;
    for (const VersionRow& row : s_versions) {
        if (std::strncmp(text, row.text, std::strlen(row.text)) == 0) return row.versionClass;
        if (*text == row.text[0]) found = row.versionClass;
    }
    return found;
}

bool VERSION_IsRead(int versionClass)
{
    return s_versions[0].versionClass <= versionClass &&
           versionClass <= VERSION_Latest()->versionClass;
}

const VersionRow* VERSION_Current()
{
    return VERSION_OfClass(geFileVersion);
}
