#include "tools/cloudconv/CollectedLog.h"

#include "tools/cloudconv/StandardError.h"
#include "universal_log_interface/universal_log_interface.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>

namespace {

std::mutex mutex;
bool collecting = false;
/// The message to report. One is enough, and a hostile header may cause millions.
int highestLevel = -1;
std::string firstOfHighestLevel;

/// The switch of the logging library, whose place this unit takes.
bool isPrintingEnabled() {
    const char* value = std::getenv(p7::ENABLE_LOG_ENV_VAR.c_str());
    return value != nullptr && std::strcmp(value, "") != 0 && std::strcmp(value, "0") != 0;
}

std::string formatted(const char* format, std::va_list values) {
    std::va_list again;
    va_copy(again, values);
    const int length = std::vsnprintf(nullptr, 0, format, again); // NOLINT: set by va_copy
    va_end(again);
    if (length <= 0) {
        return {};
    }
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    static_cast<void>(std::vsnprintf(text.data(), text.size(), format, values));
    text.resize(text.find_last_not_of(std::string("\r\n\0", 3)) + 1);
    return text;
}

} // namespace

namespace p7 {

void deliver(log_level level, unsigned short /*line*/, const char* /*file*/, const char* function,
             const char* format, ...) {
    const std::lock_guard<std::mutex> lock(mutex);
    const bool wanted = collecting && static_cast<int>(level) > highestLevel;
    if (!wanted && !isPrintingEnabled()) {
        return;
    }
    std::va_list values;
    va_start(values, format);
    try {
        const std::string text = formatted(format, values);
        if (isPrintingEnabled()) {
            printToStandardError(std::string(function) + ": " + text);
        }
        if (wanted) {
            firstOfHighestLevel = text;
            highestLevel = static_cast<int>(level);
        }
    } catch (const std::exception&) {
        // A message that does not fit into memory must not stop a conversion.
    }
    va_end(values);
}

} // namespace p7

CollectedLog::CollectedLog() {
    const std::lock_guard<std::mutex> lock(mutex);
    collecting = true;
    highestLevel = -1;
    firstOfHighestLevel.clear();
}

CollectedLog::~CollectedLog() {
    const std::lock_guard<std::mutex> lock(mutex);
    collecting = false;
}

std::string CollectedLog::reason(const std::string& otherwise) const {
    const std::lock_guard<std::mutex> lock(mutex);
    return firstOfHighestLevel.empty() ? otherwise : firstOfHighestLevel;
}
