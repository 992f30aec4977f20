#include "cli/console_interface.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace lumo::cli {
namespace {

/// Standard error for the life of the object: a terminal, or a pipe.
class CapturedError {
  public:
    explicit CapturedError(bool terminal) : saved_(dup(STDERR_FILENO)) {
        std::fflush(stderr);
        int ends[2] = {-1, -1};  // read, write
        if (terminal)
            EXPECT_EQ(openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr), 0);
        else
            EXPECT_EQ(pipe(ends), 0);
        dup2(ends[1], STDERR_FILENO);
        close(ends[1]);
        from_ = ends[0];
    }
    ~CapturedError() {
        dup2(saved_, STDERR_FILENO);
        close(saved_);
        close(from_);
    }
    CapturedError(const CapturedError&) = delete;
    CapturedError& operator=(const CapturedError&) = delete;

    /// What has come so far; empty if nothing comes within a second.
    std::string Text() {
        std::fflush(stderr);
        pollfd ready{from_, POLLIN, 0};
        if (poll(&ready, 1, 1000) <= 0) return {};
        char bytes[4096];
        const ssize_t count = read(from_, bytes, sizeof bytes);
        return {bytes, static_cast<std::size_t>(count > 0 ? count : 0)};
    }

  private:
    int saved_;
    int from_ = -1;
};

/// A bare chroot, where /dev/pts is not mounted, has none to give.
bool HasTerminals() {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal < 0) return false;
    close(terminal);
    return true;
}

constexpr const char* kNoTerminal = "this system has no pseudo terminals";

TEST(ConsoleInterface, DrawsProgressOnATerminalAndTakesItAway) {
    if (!HasTerminals()) GTEST_SKIP() << kNoTerminal;
    CapturedError error(true);
    {
        ConsoleInterface console(false);
        console.SetTitle("33% Done");
        console.ShowCounts({3, 2, 1, 0});
        EXPECT_EQ(error.Text(), "\r\x1b[K33% Done  2 of 3 images, 1 saved, 0 errors");
        console.Notice("words");  // the terminal turns a line feed into CR LF
        EXPECT_EQ(error.Text(), "\r\x1b[Kwords\r\n");
        console.ShowCounts({3, 3, 2, 0});
        error.Text();
    }
    EXPECT_EQ(error.Text(), "\r\x1b[K");
}

TEST(ConsoleInterface, DrawsNoProgressOnceTheRunIsOver) {
    if (!HasTerminals()) GTEST_SKIP() << kNoTerminal;
    CapturedError error(true);
    ConsoleInterface console(false);
    console.SetTitle("");
    console.ShowCounts({3, 3, 3, 0});
    console.ShowMessage("end");
    EXPECT_EQ(error.Text(), "end\r\n");
}

TEST(ConsoleInterface, QuietOrWithoutATerminalThereIsNone) {
    for (const bool terminal : {false, true}) {
        if (terminal && !HasTerminals()) GTEST_SKIP() << kNoTerminal;
        CapturedError error(terminal);
        ConsoleInterface console(terminal);
        console.SetTitle("33% Done");
        console.ShowCounts({3, 2, 1, 0});
        console.ShowMessage("words");
        EXPECT_EQ(error.Text(), terminal ? "words\r\n" : "words\n");
    }
}

TEST(ConsoleInterface, NobodyIsThereToSayYes) {
    CapturedError error(false);
    ConsoleInterface console(false);
    EXPECT_FALSE(console.Ask("Create now?"));
    EXPECT_EQ(error.Text(), "Create now?\n");
}

TEST(ConsoleInterface, NamesSendNothingToTheTerminal) {
    CapturedError error(false);
    ConsoleInterface console(false);
    console.Notice("/in/\x1b[31mred\r\n.jpg");
    EXPECT_EQ(error.Text(), "/in/?[31mred??.jpg\n");
}

}  // namespace
}  // namespace lumo::cli
