#include "test_support.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace kvtest {

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

ChildResult RunInChild(const std::function<void()>& body) {
    char errPath[] = "/tmp/kv_child_stderr_XXXXXX";
    int errFd = mkstemp(errPath);
    pid_t pid = fork();
    if (pid == 0) {
        dup2(errFd, 2);
        body();
        fflush(nullptr);
        _exit(0);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    close(errFd);
    ChildResult result{WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(errPath)};
    unlink(errPath);
    return result;
}

ScratchDirectory::ScratchDirectory() {
    char buffer[4096];
    previous_ = getcwd(buffer, sizeof buffer);
    char pattern[] = "/tmp/kv_scratch_XXXXXX";
    path_ = mkdtemp(pattern);
    if (chdir(path_.c_str()) != 0) std::abort();
}

ScratchDirectory::~ScratchDirectory() {
    if (chdir(previous_.c_str()) != 0) std::abort();
    std::string command = "rm -rf '" + path_ + "'";
    if (std::system(command.c_str()) != 0) std::abort();
}

}  // namespace kvtest
