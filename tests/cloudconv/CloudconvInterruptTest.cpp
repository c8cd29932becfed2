// What Ctrl-C leaves behind, and what a terminal sees meanwhile.

#include "tests/support/CloudconvFixture.h"
#include "tools/cloudconv/Interrupt.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <optional>
#include <thread>
#include <utility>

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

/// Runs a function in a child, and tells how the child ended. nohup and shells that run tests in
/// the background ignore signals; the child does not.
int statusOfChild(const std::function<void()>& function) {
    const pid_t child = fork();
    if (child == 0) {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            std::signal(signal, SIG_DFL);
        }
        function();
        _exit(0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

/// The drawing that a process writes on the way.
fs::path transientFile(pid_t process) {
    return "/var/tmp/melgrav/tarnowell3/temp_dxf_files/tmp" + std::to_string(process) + ".dxf";
}

class CloudconvInterrupt : public Cloudconv {
protected:
    /// Starts the program.
    static pid_t start(const std::vector<std::string>& arguments,
                       const std::function<void()>& prepare = {}) {
        std::vector<std::string> command = toolCommand();
        command.insert(command.end(), arguments.begin(), arguments.end());
        std::vector<char*> pointers;
        for (std::string& argument : command) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        const pid_t child = fork();
        if (child == 0) {
            std::signal(SIGINT, SIG_DFL);
            if (prepare) {
                prepare();
            }
            execvp(pointers[0], pointers.data());
            _exit(127);
        }
        return child;
    }

    static int statusOf(pid_t child) {
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return status;
    }
};

TEST_F(CloudconvInterrupt, RemovesTheFilesThatAreNamed) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        writeFile(in("temporary"), "half");
        writeFile(in("kept"), "whole");
        const int status = statusOfChild([&] {
            removeFilesWhenInterrupted();
            const RemovedWhenInterrupted temporary(in("temporary"));
            { const RemovedWhenInterrupted noLonger(in("kept")); }
            raise(signal);
        });
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
        EXPECT_EQ(names(), std::vector<std::string>{"kept"});
    }
}

TEST_F(CloudconvInterrupt, WaitsWhileItIsHeldBack) {
    writeFile(in("temporary"), "half");
    const int status = statusOfChild([&] {
        removeFilesWhenInterrupted();
        std::optional<InterruptsHeld> held(std::in_place);
        raise(SIGINT);
        const RemovedWhenInterrupted temporary(in("temporary"));
        held.reset();
        _exit(1);
    });
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT);
    EXPECT_EQ(names(), std::vector<std::string>{});
}

TEST_F(CloudconvInterrupt, ThatWasHeldBackBeforeStaysSo) {
    const int status = statusOfChild([&] {
        removeFilesWhenInterrupted();
        const InterruptsHeld outer;
        { const InterruptsHeld inner; }
        raise(SIGINT);
        _exit(0);
    });
    EXPECT_TRUE(WIFEXITED(status));
}

TEST_F(CloudconvInterrupt, ThatTheCallerIgnoresStaysIgnored) {
    const int status = statusOfChild([&] {
        std::signal(SIGHUP, SIG_IGN);
        removeFilesWhenInterrupted();
        raise(SIGHUP);
    });
    EXPECT_TRUE(WIFEXITED(status));
}

TEST_F(CloudconvInterrupt, AtAnyMomentLeavesNoHalfFile) {
    std::string scan = "ply\nformat ascii 1.0\nelement vertex 20000\nproperty float x\n"
                       "property float y\nproperty float z\nend_header\n";
    for (int i = 0; i < 20000; ++i) {
        scan += std::to_string(i) + " 2 3\n";
    }
    const fs::path from = input(scan);
    for (const char* output : {"out.ply", "out.dxf"}) {
        ASSERT_EQ(run({from, in(output)}).status, 0);
        const std::string whole = readFile(in(output));
        for (int delay = 0; delay < 12; ++delay) {
            writeFile(in(output), "old");
            const pid_t child = start({from, in(output), "--quiet"}, [] {
                // What another program of the same id may have left.
                std::error_code ignored;
                fs::remove_all(transientFile(getpid()), ignored);
            });
            std::this_thread::sleep_for(std::chrono::milliseconds(5 * delay));
            kill(child, SIGINT);
            statusOf(child);
            const std::string left = readFile(in(output));
            EXPECT_TRUE(left == "old" || left == whole) << left.size();
            EXPECT_FALSE(fs::exists(transientFile(child)));
        }
        fs::remove(in(output));
        EXPECT_EQ(names(), std::vector<std::string>{"in.ply"});
    }
}

/// The program's standard error as a terminal that is read from.
class Terminal {
public:
    Terminal() : m_descriptor(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        if (m_descriptor >= 0 && grantpt(m_descriptor) == 0 && unlockpt(m_descriptor) == 0) {
            // Held open, so that what the program wrote can be read after its end.
            m_other = open(ptsname(m_descriptor), O_RDWR | O_NOCTTY | O_CLOEXEC);
        }
    }
    ~Terminal() {
        close(m_other);
        close(m_descriptor);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// False where there are no pseudo-terminals, as in a plain chroot.
    bool isOpen() const { return m_other >= 0; }

    void becomeStandardError() const { dup2(m_other, STDERR_FILENO); }

    /// Waits up to a minute for the program to write something.
    void awaitText() const {
        pollfd waiting = {m_descriptor, POLLIN, 0};
        EXPECT_EQ(poll(&waiting, 1, 60'000), 1);
    }

    /// All that was written so far. The kernel hands it over some time after the write, in pieces:
    /// so a mark is written behind it and waited for.
    std::string text() const {
        const std::string mark = "<end of text>";
        EXPECT_EQ(write(m_other, mark.data(), mark.size()), static_cast<ssize_t>(mark.size()));
        std::string all;
        while (true) {
            const std::size_t end = all.find(mark);
            if (end != std::string::npos) {
                return all.substr(0, end);
            }
            awaitText();
            std::array<char, 4096> piece;
            const ssize_t count = read(m_descriptor, piece.data(), piece.size());
            if (count <= 0) {
                ADD_FAILURE() << "the terminal ended before its text: " << all;
                return all;
            }
            all.append(piece.data(), static_cast<std::size_t>(count));
        }
    }

private:
    int m_descriptor;
    int m_other = -1;
};

class CloudconvProgress : public CloudconvInterrupt {
protected:
    void SetUp() override {
        if (!Terminal().isOpen()) {
            GTEST_SKIP() << "no pseudo-terminal can be opened";
        }
    }

    /// What a terminal shows of a conversion whose input comes after `delay`.
    std::string shownWith(const std::vector<std::string>& options,
                          const std::function<void(const Terminal&)>& delay) {
        const fs::path pipe = in("pipe");
        EXPECT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        const Terminal terminal;
        std::vector<std::string> arguments = {pipe, in("out.ply"), "--from=ply"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const pid_t child = start(arguments, [&] { terminal.becomeStandardError(); });
        const int writer = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
        delay(terminal);
        const std::string scan = "ply\nformat ascii 1.0\nelement vertex 0\nproperty float x\n"
                                 "property float y\nproperty float z\nend_header\n";
        EXPECT_EQ(write(writer, scan.data(), scan.size()), static_cast<ssize_t>(scan.size()));
        close(writer);
        EXPECT_EQ(statusOf(child), 0);
        fs::remove(pipe);
        return terminal.text();
    }
};

TEST_F(CloudconvProgress, IsShownOnATerminalAndGoneInTheEnd) {
    const std::string shown = shownWith({}, [](const Terminal& terminal) { terminal.awaitText(); });
    const std::string clearedLine = "\r\x1B[K";
    EXPECT_THAT(shown, HasSubstr(clearedLine + "converting " + in("pipe").string()));
    // The note stands where the progress was.
    EXPECT_THAT(shown, HasSubstr(clearedLine + "cloudconv: " + in("pipe").string() + ": note: "));
}

TEST_F(CloudconvProgress, IsNotShownWhenQuiet) {
    EXPECT_EQ(shownWith({"--quiet"},
                        [](const Terminal&) {
                            std::this_thread::sleep_for(std::chrono::milliseconds(1500));
                        }),
              "");
}

} // namespace
