// A program that does not define p7::deliver, so that its messages go to the logging library's own.

#include "converters/Converters.h"
#include "universal_log_interface/universal_log_interface.h"

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

void deliverEveryLevel() {
    p7::deliver(p7::level_info, 11, "unit/first", "inform", "text %s and %d\n", "a", 7);
    p7::deliver(p7::level_warning, 22, "unit/second", "warn", "two\nlines\x1b[0m");
    p7::deliver(p7::level_error, 33, "unit/third", "fail", "%s", std::string(5000, 'x').c_str());
}

void deliverFromManyThreads() {
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([i] {
            for (int k = 0; k < 200; ++k) {
                p7::deliver(p7::level_info, 1, "unit", "function", "from %d: %s end", i,
                            std::string(200, static_cast<char>('a' + i)).c_str());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// Forks again and again while another thread reports.
/// @return whether every child could report as well
bool deliversFromChildren() {
    // Megabytes that nobody reads.
    if (std::freopen("/dev/null", "w", stderr) == nullptr) {
        return false;
    }
    std::atomic<bool> isOver{false};
    std::thread other([&] {
        while (!isOver) {
            p7::deliver(p7::level_info, 1, "unit", "function", "from the other thread");
        }
    });
    bool isRight = true;
    for (int i = 0; i < 300 && isRight; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            alarm(60); // a child that waits for ever ends the test
            p7::deliver(p7::level_info, 2, "unit", "function", "from a child");
            _exit(0);
        }
        int status = -1;
        waitpid(child, &status, 0);
        isRight = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    isOver = true;
    other.join();
    return isRight;
}

} // namespace

int main(int, char** arguments) {
    const std::string what = arguments[1];
    if (what == "levels") {
        deliverEveryLevel();
    } else if (what == "threads") {
        deliverFromManyThreads();
    } else if (what == "library") {
        std::vector<unsigned char> out;
        converters::toPlyAscii({}, out);
    } else if (what == "forks") {
        return deliversFromChildren() ? 0 : 1;
    } else {
        return 2;
    }
    return 0;
}
