// toDxf while its file is taken away or replaced, when it is killed, and beside other processes.
#include "converters/Converters.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/OwnFileSystem.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <random>
#include <set>
#include <thread>

namespace {

using Points = std::vector<cv::Point3_<double>>;
using Bytes = std::vector<unsigned char>;

std::filesystem::path transientFile(pid_t process) {
    return converters::tmpDxfPath / ("tmp" + std::to_string(process) + ".dxf");
}

/// Above the temporary directory and its parent: the first of the library's own.
const std::filesystem::path base = converters::tmpDxfPath.parent_path().parent_path();

Points manyPoints() {
    return Points(20'000, {1.0 / 3.0, -2.5, 1e10});
}

TEST(ToDxfFaults, ParentsOfSomebodyElseThrowAndNothingIsMade) {
    const int status = inChildProcess([&] {
        if (!mountOwnFileSystem(base, "mode=755") || setuid(nobody) != 0) {
            return notPermitted;
        }
        Bytes out = {1, 2, 3};
        try {
            converters::toDxf(manyPoints(), out);
            return 1;
        } catch (const std::filesystem::filesystem_error&) {
            return out.empty() && std::filesystem::is_empty(base) ? 0 : 2;
        }
    });
    if (status == notPermitted) {
        GTEST_SKIP() << "no permission to mount a file system and to become another user";
    }
    EXPECT_EQ(status, 0);
}

TEST(ToDxfFaults, ReadOnlyFileSystemGivesFalse) {
    const int status = inChildProcess([&] {
        if (!mountOwnFileSystem(base, "mode=777")) {
            return notPermitted;
        }
        std::filesystem::create_directories(converters::tmpDxfPath);
        if (mount(nullptr, base.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) {
            return notPermitted;
        }
        Bytes out = {1, 2, 3};
        const bool result = converters::toDxf(manyPoints(), out);
        return result || !out.empty() ? 1 : 0;
    });
    if (status == notPermitted) {
        GTEST_SKIP() << "no permission to mount a file system";
    }
    EXPECT_EQ(status, 0);
}

/// Puts something else at a path, again and again, until it is told to stop.
class Replacer {
public:
    Replacer(std::filesystem::path path, const std::string& victim)
        : m_path(std::move(path)), m_thread([this, victim] {
              for (unsigned i = 0; !m_stop; ++i) {
                  remove();
                  put(i % 4, victim);
                  std::this_thread::sleep_for(std::chrono::microseconds(i % 300));
              }
              remove();
          }) {}
    ~Replacer() {
        m_stop = true;
        m_thread.join();
    }

private:
    void remove() { ::remove(m_path.c_str()); }
    void put(unsigned kind, const std::string& victim) {
        switch (kind) {
        case 0:
            m_failed = symlink(victim.c_str(), m_path.c_str()) != 0;
            break;
        case 1:
            m_failed = mkfifo(m_path.c_str(), 0600) != 0;
            break;
        case 2:
            m_failed = mkdir(m_path.c_str(), 0700) != 0;
            break;
        default:
            m_failed = link(victim.c_str(), m_path.c_str()) != 0;
        }
    }

    std::filesystem::path m_path;
    std::atomic<bool> m_stop{false};
    /// Of no interest: the library may have been faster.
    bool m_failed = false;
    std::thread m_thread;
};

TEST(ToDxfFaults, FileThatIsReplacedAllTheTimeIsNeitherFollowedNorWaitedFor) {
    const std::string victim =
        (converters::tmpDxfPath / "victim").string() + std::to_string(getpid());
    std::filesystem::create_directories(converters::tmpDxfPath);
    const Points points(300, {1.5, 2.5, 3.5});
    Bytes expected;
    ASSERT_TRUE(converters::toDxf(points, expected));
    writeContent(victim, "precious");
    const int status = inChildProcess([&] {
        alarm(500); // a file that is waited for ends the test
        const Replacer replacer(transientFile(getpid()), victim);
        for (int i = 0; i < 2000; ++i) {
            Bytes out = {1, 2, 3};
            bool isMade = false;
            try {
                isMade = converters::toDxf(points, out);
            } catch (const std::filesystem::filesystem_error&) {
                // What was put there at the last moment cannot be removed: a full directory.
                out.clear();
            }
            if (isMade ? out != expected : !out.empty()) {
                return 1;
            }
            if (contentOf(victim) != "precious") {
                return 2;
            }
        }
        return 0;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(contentOf(victim), "precious");
    std::filesystem::remove(victim);
}

/// Runs `body` as the first process of a numbering of its own, so that each such child has the same
/// process id, 1.
/// @return the child's id seen from here, or -1 without the permission
pid_t startAsProcessOne(const std::function<int()>& body) {
    const pid_t parent = fork();
    if (parent != 0) {
        return parent;
    }
    if (unshare(CLONE_NEWPID) != 0) {
        _exit(notPermitted);
    }
    const pid_t child = fork();
    if (child == 0) {
        _exit(body());
    }
    // Ends with the child, and the child with this process.
    int status = 0;
    waitpid(child, &status, 0);
    _exit(WIFEXITED(status) ? WEXITSTATUS(status) : 1);
}

/// Kills a process again and again, each time at some moment, and has the next one of its id work.
/// @return 0 when all is as it has to be, or notPermitted
int killAtRandom(const Points& points, const Bytes& expected) {
    std::mt19937 random(7);
    int leftOver = 0;
    for (int i = 0; i < 40; ++i) {
        const pid_t victim = fork();
        if (victim == 0) {
            // The process that is killed is the one whose id is 1 in its own numbering.
            if (unshare(CLONE_NEWPID) != 0) {
                _exit(notPermitted);
            }
            int begun[2] = {};
            static_cast<void>(pipe(begun) == 0);
            const pid_t child = fork();
            if (child == 0) {
                static_cast<void>(write(begun[1], "", 1) == 1);
                for (;;) {
                    Bytes out;
                    converters::toDxf(points, out);
                }
            }
            char byte = 0;
            static_cast<void>(read(begun[0], &byte, 1) == 1);
            usleep(static_cast<useconds_t>(1000 + random() % 30'000));
            kill(child, SIGKILL);
            waitpid(child, nullptr, 0);
            _exit(0);
        }
        random.discard(1);
        int status = -1;
        waitpid(victim, &status, 0);
        if (WIFEXITED(status) && WEXITSTATUS(status) == notPermitted) {
            return notPermitted;
        }
        leftOver += std::filesystem::exists(transientFile(1)) ? 1 : 0;
        const pid_t next = startAsProcessOne([&] {
            Bytes out;
            const bool isMade = getpid() == 1 && converters::toDxf(points, out);
            return isMade && out == expected ? 0 : 1;
        });
        waitpid(next, &status, 0);
        EXPECT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 0) << "attempt " << i;
        EXPECT_FALSE(std::filesystem::exists(transientFile(1)));
    }
    EXPECT_GT(leftOver, 0) << "none was killed in the middle";
    return testing::Test::HasFailure() ? 1 : 0;
}

TEST(ToDxfFaults, NextProcessOfTheSameIdWorksWhereverTheLastOneWasKilled) {
    const Points points = manyPoints();
    Bytes expected;
    ASSERT_TRUE(converters::toDxf(points, expected));
    // A directory of its own: other tests have a process 1 as well.
    const int status = inChildProcess([&] {
        return mountOwnFileSystem(base, "") ? killAtRandom(points, expected) : notPermitted;
    });
    if (status == notPermitted) {
        GTEST_SKIP() << "no permission to mount and for a numbering of processes of its own";
    }
    EXPECT_EQ(status, 0);
}

// Statuses of stepAsProcessOne.
constexpr int isKilled = 1;
constexpr int isFinished = 2;

/// Lets a traced child run up to the given number of begins and ends of system calls, and kills it.
/// @return isKilled, isFinished when the child ended before, or notPermitted
int stepAndKill(pid_t child, int steps) {
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) {
        return notPermitted;
    }
    for (int step = 0; step < steps; ++step) {
        if (ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) != 0 ||
            waitpid(child, &status, 0) != child) {
            return notPermitted;
        }
        if (WIFEXITED(status)) {
            return isFinished;
        }
    }
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return isKilled;
}

/// Runs `body` in a process that has the id 1, and kills it after so many steps.
/// @return that of stepAndKill
int stepAsProcessOne(const std::function<void()>& body, int steps) {
    return inChildProcess([&] {
        if (unshare(CLONE_NEWPID) != 0) {
            return notPermitted;
        }
        const pid_t child = fork();
        if (child == 0) {
            if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
                _exit(notPermitted);
            }
            raise(SIGSTOP);
            body();
            _exit(0);
        }
        return stepAndKill(child, steps);
    });
}

/// Kills toDxf after each number of steps, and calls it in the next process of the same id.
/// @return 0, notPermitted, or 1 when a call went wrong
int killBetweenSystemCalls(const Points& points, const Bytes& expected) {
    Bytes out;
    const auto convert = [&] { return converters::toDxf(points, out); };
    std::set<std::uintmax_t> sizesOfLeftOvers;
    int steps = 0;
    for (int outcome = isKilled; outcome != isFinished; ++steps) {
        outcome = stepAsProcessOne(convert, steps);
        if (outcome != isKilled && outcome != isFinished) {
            return notPermitted;
        }
        if (std::filesystem::exists(transientFile(1))) {
            sizesOfLeftOvers.insert(std::filesystem::file_size(transientFile(1)));
        }
        int status = -1;
        waitpid(startAsProcessOne([&] { return convert() && out == expected ? 0 : 1; }), &status,
                0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "after " << steps << " steps";
        EXPECT_FALSE(std::filesystem::exists(transientFile(1))) << "after " << steps << " steps";
    }
    // Killed before the first byte, in between, and before the file was removed.
    EXPECT_GT(sizesOfLeftOvers.size(), 2U);
    EXPECT_EQ(sizesOfLeftOvers.count(0), 1U);
    EXPECT_EQ(sizesOfLeftOvers.count(expected.size()), 1U);
    return testing::Test::HasFailure() ? 1 : 0;
}

TEST(ToDxfFaults, NextProcessOfTheSameIdWorksAfterAKillBetweenAnyTwoSystemCalls) {
    // Several blocks of a file.
    const Points points(10'000, {1.0 / 3.0, -2.5, 1e10});
    Bytes expected;
    ASSERT_TRUE(converters::toDxf(points, expected));
    // A directory of its own: other tests have a process 1 as well.
    const int status = inChildProcess([&] {
        return mountOwnFileSystem(base, "") ? killBetweenSystemCalls(points, expected)
                                            : notPermitted;
    });
    if (status == notPermitted) {
        GTEST_SKIP() << "no permission to mount a file system and to trace a process";
    }
    EXPECT_EQ(status, 0);
}

TEST(ToDxfFaults, EightProcessesAtOnceDoNotDisturbEachOther) {
    std::vector<pid_t> children;
    for (int number = 0; number < 8; ++number) {
        const pid_t child = fork();
        if (child == 0) {
            const Points points(500, {static_cast<double>(number), 0.5, -1.0});
            Bytes first;
            bool isRight = converters::toDxf(points, first);
            const std::string text(first.begin(), first.end());
            isRight = isRight &&
                      text.find("\n 10\n" + std::to_string(number) + ".0\n") != std::string::npos;
            for (int i = 0; i < 30 && isRight; ++i) {
                Bytes out;
                isRight = converters::toDxf(points, out) && out == first;
            }
            _exit(isRight ? 0 : 1);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        EXPECT_FALSE(std::filesystem::exists(transientFile(child)));
    }
}

} // namespace
