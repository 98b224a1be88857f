// Whole text files and their lines.
#ifndef QUELL_BASE_LINES_H
#define QUELL_BASE_LINES_H

#include <string>
#include <string_view>

#include "quell/base/file_pointer.h"

namespace quell {

// The bytes of a regular file. Throws InputError for anything else: a folder, a device, a file
// that cannot be read or is larger than 1 GB.
std::string ReadTextFile(const std::string& path);

// Walks the lines of a text; LF, CR LF and CR alone end a line. A byte order mark is skipped.
class LineWalker {
public:
    explicit LineWalker(std::string_view text);
    bool Next(std::string_view& line);
    size_t Number() const { return m_Number; }  // of the line read last, 1 for the first

private:
    std::string_view m_Rest;
    size_t m_Number = 0;
};

// Walks the lines of a regular file in the same way, with one block of it in memory.
class FileLines {
public:
    // Throws InputError for what ReadTextFile refuses.
    explicit FileLines(const std::string& path);
    // The line holds until the next call. Throws InputError when the file cannot be read.
    bool Next(std::string_view& line);
    size_t Number() const { return m_Number; }

private:
    void ReadBlock();

    std::string m_Path;
    FilePointer m_File;
    size_t m_Left;        // bytes that are not read yet
    std::string m_Block;  // what is read, from the line walked last
    size_t m_Begin = 0;   // of the next line
    size_t m_Number = 0;
};

// Takes the next token from the front of a line: separators are blanks, tabs and the characters
// given. Empty when there is none.
std::string_view NextToken(std::string_view& line, std::string_view separators = " \t\v\f");

// A token as it may stand in a message: what is not printable ASCII replaced, cut to a readable
// length.
std::string Quoted(std::string_view token);

std::string Lower(std::string_view text);

}  // namespace quell

#endif
