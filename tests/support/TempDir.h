// A directory of its own for a test, removed with what is in it.
#ifndef TESTS_SUPPORT_TEMP_DIR_H
#define TESTS_SUPPORT_TEMP_DIR_H

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

class TempDir {
public:
    TempDir()
    {
        std::string name = (std::filesystem::temp_directory_path() / "quell-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
        m_Path = name;
    }
    ~TempDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_Path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    // Writes a file, NULs and all, and gives its path.
    std::string Write(const std::string& name, std::string_view content) const
    {
        std::ofstream(m_Path / name, std::ios::binary) << content;
        return Path(name);
    }
    // The path of a name in the directory; of none, the directory with its trailing "/".
    std::string Path(const std::string& name = {}) const { return (m_Path / name).string(); }

private:
    std::filesystem::path m_Path;
};

#endif
