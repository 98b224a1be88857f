// The kinds of file that the reader knows, by their extensions.
#ifndef QUELL_READER_FILE_TYPES_H
#define QUELL_READER_FILE_TYPES_H

#include <string>
#include <string_view>
#include <utility>

#include "IbisParser/keyword.h"

namespace quell {

inline constexpr std::pair<const char*, FileType> FileTypes[] = {
    {"ibs", FILE_IBS}, {"pkg", FILE_PKG}, {"ebd", FILE_EBD}, {"ami", FILE_AMI}};

// By the extension, in any case; false when it is none of these.
bool TypeOfName(const std::string& name, FileType& type);

// The word of a type, its extension without the period.
const char* TypeWord(FileType type);

// The folder of a path with its "/", as it is written; empty when it has none.
std::string FolderOf(const std::string& path);
std::string BaseName(const std::string& path);

// A file name that the reader takes for the type: itself, or with another extension.
std::string LegalName(const std::string& baseName, FileType type);

// The names by which the reader may tell of the file that goes by a name; another one is a
// companion.
class OwnNames {
public:
    OwnNames(const std::string& name, FileType type)
        : m_Base(BaseName(name)), m_Legal(LegalName(m_Base, type))
    {
    }
    bool Has(std::string_view told) const
    {
        return told.empty() || told == m_Base || told == m_Legal;
    }

private:
    std::string m_Base;
    std::string m_Legal;
};

}  // namespace quell

#endif
