// The library as a simulator loads it.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <vector>

#include "tests/support/TempDir.h"

#if defined(__SANITIZE_ADDRESS__)
#define QUELL_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUELL_ADDRESS_SANITIZER
#endif
#endif
#ifdef QUELL_ADDRESS_SANITIZER
#include <sanitizer/lsan_interface.h>
#endif

namespace fs = std::filesystem;

namespace {

using Init = long(double*, long, long, double, double, char*, char**, void**, char**);
using Close = long(void*);

const char* const LibraryFiles[] = {QUELL_BINARY_DIR "/lib/libQuell_PCIe_Gen2_Tx.so",
                                    QUELL_BINARY_DIR "/kit/quell_pcie_gen2_tx.so"};

struct Plugin {
    void* library;
    Init* init;
    Close* close;

    explicit Plugin(const std::string& file)
        : library(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)), init(nullptr), close(nullptr)
    {
        if (library == nullptr) return;
        init = reinterpret_cast<Init*>(dlsym(library, "AMI_Init"));
        close = reinterpret_cast<Close*>(dlsym(library, "AMI_Close"));
    }
};

bool Mapped(const std::string& file)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find(file) != std::string::npos) return true;
    return false;
}

// The response of the plug-in to a short impulse, and the handle, still open.
std::vector<double> Filter(const Plugin& plugin, void** handle)
{
#ifdef QUELL_ADDRESS_SANITIZER
    // The tree of the parameter string is kept by design; once the library is unloaded, its frames
    // have no names that a suppression could match.
    const __lsan::ScopedDisabler kept;
#endif
    std::vector<double> column(64, 0.0);
    column[3] = 1.0;
    char parameters[] = "(Quell_PCIe_Gen2_Tx (de_emphasis 6))";
    char* message = nullptr;
    EXPECT_EQ(1, plugin.init(column.data(), 64, 0, 12.5e-12, 200e-12, parameters, nullptr, handle,
                             &message));
    EXPECT_EQ(nullptr, message);
    return column;
}

}  // namespace

GTEST_TEST(Plugin, LoadsTwiceUnloadsAndLoadsAgain)
{
    for (const char* file : LibraryFiles) {
        SCOPED_TRACE(file);
        const TempDir folder;
        const fs::path other = folder.Path("other.so");
        fs::copy_file(file, other);
        const Plugin first(file);
        const Plugin second(other);
        ASSERT_TRUE(first.library != nullptr && second.library != nullptr) << dlerror();
        ASSERT_NE(first.init, second.init);

        void* handles[2] = {nullptr, nullptr};
        const std::vector<double> expected = Filter(first, &handles[0]);
        EXPECT_EQ(expected, Filter(second, &handles[1]));
        EXPECT_EQ(1, first.close(handles[0]));
        EXPECT_EQ(0, dlclose(first.library));
        EXPECT_FALSE(Mapped(file));

        // The second copy lives on without the first.
        EXPECT_EQ(1, second.close(handles[1]));
        EXPECT_EQ(expected, Filter(second, &handles[1]));
        EXPECT_EQ(1, second.close(handles[1]));
        EXPECT_EQ(0, dlclose(second.library));
        EXPECT_FALSE(Mapped(other.filename()));

        const Plugin again(file);
        ASSERT_TRUE(again.library != nullptr) << dlerror();
        EXPECT_EQ(expected, Filter(again, &handles[0]));
        EXPECT_EQ(1, again.close(handles[0]));
        dlclose(again.library);
    }
}

GTEST_TEST(Plugin, HasNoGetWave)
{
    for (const char* file : LibraryFiles) {
        const Plugin plugin(file);
        ASSERT_TRUE(plugin.init != nullptr && plugin.close != nullptr) << file;
        EXPECT_EQ(nullptr, dlsym(plugin.library, "AMI_GetWave")) << file;
        EXPECT_EQ(1, plugin.close(nullptr)) << file;
    }
}

// The library carries a C++ library of its own; the host's must still catch what it throws.
GTEST_TEST(Plugin, HostCatchesBadAlloc)
{
#ifdef QUELL_ADDRESS_SANITIZER
    GTEST_SKIP() << "the sanitizer's shadow memory rules out an address-space limit";
#else
    for (const char* file : LibraryFiles) {
        SCOPED_TRACE(file);
        const Plugin plugin(file);
        ASSERT_TRUE(plugin.init != nullptr);

        // The parameter text is copied, and the second half gigabyte is not to be had.
        const std::size_t size = std::size_t{512} << 20;
        std::string parameters(size, ' ');
        std::size_t used = 0;
        std::ifstream("/proc/self/statm") >> used;
        struct rlimit limit;
        ASSERT_EQ(0, getrlimit(RLIMIT_AS, &limit));
        const struct rlimit before = limit;
        limit.rlim_cur = used * 4096 + size / 2;
        ASSERT_EQ(0, setrlimit(RLIMIT_AS, &limit));
        double sample = 1.0;
        void* handle = nullptr;
        char* message = nullptr;
        bool caught = false;
        try {
            plugin.init(&sample, 1, 0, 12.5e-12, 200e-12, parameters.data(), nullptr, &handle,
                        &message);
        } catch (const std::bad_alloc&) {
            caught = true;
        }
        setrlimit(RLIMIT_AS, &before);
        EXPECT_TRUE(caught);
        EXPECT_EQ(nullptr, handle);
        dlclose(plugin.library);
    }
#endif
}
