// Small helpers shared by the tests: random images and child processes.
#ifndef KV_TESTS_TEST_SUPPORT_H
#define KV_TESTS_TEST_SUPPORT_H

#include <dlfcn.h>

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace kvtest {

// Bytes drawn from a fixed seed, so that a failure repeats.
inline std::vector<uint8_t> RandomBytes(size_t count, uint32_t seed) {
    std::mt19937 generator(seed);
    std::vector<uint8_t> bytes(count);
    for (auto& b : bytes) b = static_cast<uint8_t>(generator());
    return bytes;
}

// Whole file as text; empty when it cannot be read.
std::string ReadFile(const std::string& path);

// What a child process left behind: its exit status and its standard error.
struct ChildResult {
    int exitCode;
    std::string standardError;
};

// Runs body in a forked child (so that once-per-process state starts fresh)
// and collects its exit code and standard error.
ChildResult RunInChild(const std::function<void()>& body);

// The library's own entry points from a fresh load of it, as a new process
// would see them: its once-per-process state (seeds, running draws) has not
// been touched yet, whatever the test program ran before.
struct FreshLibrary {
    void* handle = dlopen(KV_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    template <typename Function>
    Function* Get(const char* name) {
        return reinterpret_cast<Function*>(dlsym(handle, name));
    }
};

// Makes a fresh empty directory and changes into it; the destructor goes back.
class ScratchDirectory {
public:
    ScratchDirectory();
    ~ScratchDirectory();
    const std::string& path() const { return path_; }

private:
    std::string path_;
    std::string previous_;
};

}  // namespace kvtest

#endif
