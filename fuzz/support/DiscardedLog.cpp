// The log of every fuzz target: messages are formatted, so that sanitizers see their values, and
// dropped.
#include "universal_log_interface/universal_log_interface.h"

#include <pcl/console/print.h>

#include <array>
#include <cstdarg>
#include <cstdio>

namespace p7 {

__attribute__((visibility("default"))) void deliver(log_level, unsigned short, const char*,
                                                    const char*, const char* format, ...) {
    std::array<char, 256> text;
    va_list values;
    va_start(values, format);
    std::vsnprintf(text.data(), text.size(), format, values);
    va_end(values);
}

} // namespace p7

namespace {

// Warnings about missing fields would be most of the time and all of the output.
[[maybe_unused]] const bool isSilent = [] {
    pcl::console::setVerbosityLevel(pcl::console::L_ALWAYS);
    return true;
}();

} // namespace
