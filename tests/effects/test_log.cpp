// The log is made once per process, so every case runs in a child process.
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "effects/Gray.h"
#include "kelvarine.h"
#include "test_support.h"

namespace {

const char kLog[] = "/tmp/Kelvarine.log";
const std::string kRule = "============================================\n";

// The log's text behind its banner (a rule, the date and time unpadded, a
// rule and an empty line); fails the test when the banner is wrong.
std::string MessagesAfterBanner() {
    std::string text = kvtest::ReadFile(kLog);
    size_t dateLine = kRule.size();
    size_t secondRule = text.find('\n', dateLine) + 1;
    int year, month, day, hour, minute, second, consumed = 0;
    bool dated = sscanf(text.c_str() + dateLine, "%d/%d/%d %d:%d:%d\n%n", &year, &month, &day, &hour, &minute,
                        &second, &consumed) == 6;
    bool framed = text.compare(0, kRule.size(), kRule) == 0 && text.compare(secondRule, kRule.size(), kRule) == 0 &&
                  text.compare(secondRule + kRule.size(), 1, "\n") == 0;
    EXPECT_TRUE(dated && framed && dateLine + consumed == secondRule && year >= 2000 && month >= 1 && month <= 12)
        << text;
    return framed ? text.substr(secondRule + kRule.size() + 1) : text;
}

TEST(Log, FirstMessageCreatesTheFileWithBannerAndPrefix) {
    auto child = kvtest::RunInChild([] {
        if (GetLogFileHandle() != 0) _exit(1);
        WriteLog1(3, "Box Effect Src == NULL ");
        WriteLog1(3, "Box Effect Width = %d Height =%d", 0, 7);
        WriteLog1(2, "x");
        WriteLog1(0, "y");
    });
    EXPECT_EQ(child.exitCode, 0) << "no log before the first message";
    EXPECT_EQ(child.standardError, "Log file=\"/tmp/Kelvarine.log\".\n");
    EXPECT_EQ(MessagesAfterBanner(),
              " *** Box Effect Src == NULL  *** Box Effect Width = 0 Height =7  *  x     y");
    struct stat info;
    ASSERT_EQ(stat(kLog, &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
}

TEST(Log, PlainAndSourceLocatedMessages) {
    kvtest::RunInChild([] {
        WriteLog("plain %d|", 5);
        WriteLog2("a", 7, 2, "x");
        WriteLog(nullptr);
        WriteLog1(1, nullptr);
    });
    EXPECT_EQ(MessagesAfterBanner(), "plain 5|file:a, line:7\n  *  x");
}

TEST(Log, NewProcessReplacesTheOldLog) {
    kvtest::RunInChild([] { WriteLog("first"); });
    auto child = kvtest::RunInChild([] { WriteLog(nullptr); });
    EXPECT_EQ(MessagesAfterBanner(), "") << "a null format still creates the log";
    EXPECT_NE(child.standardError.find("Log file="), std::string::npos);
}

TEST(Log, GuardedProcReportsInTheClassWords) {
    kvtest::RunInChild([] {
        Effect_Base* gray = Kelvarine_NewInstance(1036);
        unsigned char pixel[4] = {};
        Kelvarine_Proc(gray, nullptr, 2, 2);
        Kelvarine_Proc(gray, pixel, 3, 0);
        Kelvarine_Destory(gray);
    });
    EXPECT_EQ(MessagesAfterBanner(), " *** Gray Effect Src == NULL  *** Gray Effect Width = 3 Height =0");
}

TEST(Log, UnwritablePathIsReportedOnceAndEffectsCarryOn) {
    // A non-empty directory in the log's place can be neither removed nor opened.
    unlink(kLog);
    ASSERT_EQ(mkdir(kLog, 0700), 0);
    std::string blocker = std::string(kLog) + "/keep";
    fclose(fopen(blocker.c_str(), "w"));
    auto child = kvtest::RunInChild([] {
        Effect_Base* gray = Kelvarine_NewInstance(1036);
        unsigned char pixel[4] = {3, 6, 9, 1};
        bool refused = Kelvarine_Proc(gray, nullptr, 1, 1) == -1;
        WriteLog1(3, "again");
        bool ran = Kelvarine_Proc(gray, pixel, 1, 1) == 0 && pixel[0] == 6;
        Kelvarine_Destory(gray);
        _exit(refused && ran && GetLogFileHandle() == -1 ? 0 : 1);
    });
    unlink(blocker.c_str());
    rmdir(kLog);
    EXPECT_EQ(child.exitCode, 0);
    EXPECT_EQ(child.standardError, "Faild to create log file:\"/tmp/Kelvarine.log\".\n");
}

TEST(Log, HandleSetAfterCreationReceivesTheMessages) {
    char path[] = "/tmp/kv_log_handle_XXXXXX";
    int fd = mkstemp(path);
    kvtest::RunInChild([fd] {
        WriteLog("to the log");
        SetLogHandle(fd);
        WriteLog1(3, "to the handle");
    });
    close(fd);
    EXPECT_EQ(kvtest::ReadFile(path), " *** to the handle");
    unlink(path);
}

}  // namespace
