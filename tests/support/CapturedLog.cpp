#include "tests/support/CapturedLog.h"

#include "universal_log_interface/universal_log_interface.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <stdexcept>

namespace {

std::mutex mutex;
std::vector<LogMessage> captured;
std::atomic<bool> capturing = false;
std::atomic<bool> throwing = false;
std::atomic<int> messagesBeforeThrowing = 0;

} // namespace

namespace p7 {

void deliver(log_level level, unsigned short line, const char* file, const char* function,
             const char* format, ...) {
    if (throwing && messagesBeforeThrowing-- <= 0) {
        throw std::runtime_error("deliver");
    }
    if (!capturing) {
        return;
    }
    std::va_list values;
    va_start(values, format);
    std::va_list again;
    va_copy(again, values);
    const int length = std::vsnprintf(nullptr, 0, format, values);
    va_end(values);
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, again);
    va_end(again);
    text.pop_back();

    const std::lock_guard<std::mutex> lock(mutex);
    captured.push_back({static_cast<int>(level), file, function, text, line});
}

} // namespace p7

bool operator==(const LogMessage& a, const LogMessage& b) {
    return a.level == b.level && a.file == b.file && a.function == b.function && a.text == b.text;
}

std::ostream& operator<<(std::ostream& stream, const LogMessage& message) {
    return stream << message.level << ' ' << message.file << ':' << message.line << ' '
                  << message.function << " \"" << message.text << '"';
}

CapturedLog::CapturedLog() {
    const std::lock_guard<std::mutex> lock(mutex);
    captured.clear();
    capturing = true;
}

CapturedLog::~CapturedLog() {
    capturing = false;
}

std::vector<LogMessage> CapturedLog::messages() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return captured;
}

ThrowingLog::ThrowingLog(int messagesBefore) {
    messagesBeforeThrowing = messagesBefore;
    throwing = true;
}

ThrowingLog::~ThrowingLog() {
    throwing = false;
}
