// A program that does not define p7::deliver, so that its messages go to the logging library's own.

#include "converters/Converters.h"
#include "universal_log_interface/universal_log_interface.h"

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
    } else {
        return 2;
    }
    return 0;
}
