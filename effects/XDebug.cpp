// The diagnostic log: one file, truncated by the first message of a process
// and written with plain write calls, so there is never anything to flush.
#include "effects/XDebug.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>

int logfile = 0;

namespace {

const char kLogPath[] = "/tmp/Kelvarine.log";

// The prefix of a message by level; every entry is five characters.
const char LogHeader[4][6] = {"     ", "     ", "  *  ", " *** "};

// Messages are the library's own short texts; the buffer is not guarded.
constexpr int kMessageBytes = 4096;

void writeIfOpen(const char* text, size_t length) {
    if (logfile != 0) {
        ssize_t ignored = write(logfile, text, length);
        (void)ignored;
    }
}

}  // namespace

// Creation is attempted once in the life of the process, whatever comes of it.
void CreateLogFile() {
    static bool binit = false;
    if (binit) return;
    binit = true;

    remove(kLogPath);
    logfile = open(kLogPath, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (logfile <= 0) {
        fprintf(stderr, "Faild to create log file:\"%s\".\n", kLogPath);
        return;
    }
    fprintf(stderr, "Log file=\"%s\".\n", kLogPath);

    time_t now = time(nullptr);
    struct tm* local = localtime(&now);
    char banner[1024];
    sprintf(banner,
            "============================================\n%d/%d/%d %d:%d:%d\n"
            "============================================\n\n",
            local->tm_year + 1900, local->tm_mon + 1, local->tm_mday, local->tm_hour, local->tm_min,
            local->tm_sec);
    writeIfOpen(banner, strlen(banner));
}

KV_API void WriteLog(const char* format, ...) {
    CreateLogFile();
    if (format == nullptr) return;
    char message[kMessageBytes];
    va_list args;
    va_start(args, format);
    int length = vsprintf(message, format, args);
    va_end(args);
    writeIfOpen(message, static_cast<size_t>(length));
}

// The level is an index into LogHeader and is not checked: 0 to 3 only.
KV_API void WriteLog1(int32_t level, const char* format, ...) {
    CreateLogFile();
    if (format == nullptr) return;
    char message[kMessageBytes];
    strcpy(message, LogHeader[level]);
    va_list args;
    va_start(args, format);
    int length = vsprintf(message + 5, format, args);
    va_end(args);
    writeIfOpen(message, static_cast<size_t>(length) + 5);
}

KV_API void WriteLog2(const char* file, int32_t line, int32_t level, const char* format, ...) {
    CreateLogFile();
    if (format == nullptr) return;
    char message[kMessageBytes];
    int head = sprintf(message, "file:%s, line:%d\n%s", file, line, LogHeader[level]);
    va_list args;
    va_start(args, format);
    int length = vsprintf(message + head, format, args);
    va_end(args);
    writeIfOpen(message, static_cast<size_t>(head + length));
}

KV_API int32_t GetLogFileHandle() { return logfile; }

KV_API void SetLogHandle(int32_t handle) { logfile = handle; }
