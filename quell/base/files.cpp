// Files that the command reads and writes, and the checksums of those it used.
#include "quell/base/files.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>

#include "quell/base/errors.h"

namespace quell {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const std::string& path, int error)
{
    throw InputError(path, 0, std::string("cannot be written: ") + std::strerror(error));
}

// The error number, or 0.
int WriteAll(int file, std::string_view content)
{
    while (!content.empty()) {
        const ssize_t written = ::write(file, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        content.remove_prefix(static_cast<size_t>(written));
    }
    return 0;
}

// Writes and closes; the error number, or 0.
int WriteNamed(const std::string& path, int flags, const TextWriter& write)
{
    const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC | flags, 0666);
    if (file < 0) return errno;
    int error = 0;
    write([&](std::string_view piece) {
        if (error == 0) error = WriteAll(file, piece);
    });
    if (close(file) != 0 && error == 0) error = errno;
    return error;
}

}  // namespace

std::string WhyNotReadable(const std::string& path, unsigned long long& size)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) return "no such file";
    if (error) return error.message();
    if (!fs::is_regular_file(status)) return "not a regular file";
    if (access(path.c_str(), R_OK) != 0) return std::strerror(errno);
    size = fs::file_size(path, error);
    return error ? error.message() : "";
}

void WriteWholeFile(const std::string& path, std::string_view content)
{
    WriteWholeFile(path, [&content](const TextSink& out) { out(content); });
}

void WriteWholeFile(const std::string& path, const TextWriter& write)
{
    std::error_code status;
    // The file that a link leads to is replaced, not the link.
    const fs::path target = fs::weakly_canonical(path, status);
    const std::string name = status ? path : target.string();
    const fs::file_status kind = fs::status(name, status);
    if (fs::exists(kind) && !fs::is_regular_file(kind)) {
        if (fs::is_directory(kind)) Fail(path, EISDIR);
        if (const int error = WriteNamed(path, O_TRUNC, write)) Fail(path, error);
        return;
    }
    const std::string other = name + ".part" + std::to_string(getpid());
    int error = 0;
    try {
        error = WriteNamed(other, O_CREAT | O_EXCL, write);
    } catch (...) {
        unlink(other.c_str());
        throw;
    }
    if (error == EEXIST) Fail(path, error);
    if (error == 0 && std::rename(other.c_str(), name.c_str()) != 0) error = errno;
    if (error != 0) {
        unlink(other.c_str());
        Fail(path, error);
    }
}

std::string Sha256OfFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(),
                                                                     EVP_MD_CTX_free);
    if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1)
        throw std::bad_alloc();
    std::array<char, 65536> block;
    while (file) {
        file.read(block.data(), block.size());
        EVP_DigestUpdate(context.get(), block.data(), static_cast<size_t>(file.gcount()));
    }
    if (!file.eof() || file.bad()) throw InputError(path, 0, "cannot be read");
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest;
    unsigned length = 0;
    EVP_DigestFinal_ex(context.get(), digest.data(), &length);
    std::string text;
    for (unsigned i = 0; i < length; ++i) {
        constexpr const char* Digits = "0123456789abcdef";
        text += Digits[digest[i] >> 4];
        text += Digits[digest[i] & 15];
    }
    return text;
}

}  // namespace quell
