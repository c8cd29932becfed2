#include "python/native/LogRecord.h"

#include "universal_log_interface/universal_log_interface.h"

#include <cstdarg>
#include <cstdio>

// Every call of p7::deliver in this module reaches deliverRecorded instead, which passes the
// message on to deliverToLibrary, the logging library's own function: the linker's --wrap exchanges
// them. A second definition of p7::deliver would not do: whether that one is found depends on what
// the process loaded before.
#define LINKED_NAME(prefix) prefix CONVERTERS_DELIVER_SYMBOL
void deliverRecorded(p7::log_level level, unsigned short line, const char* file,
                     const char* function, const char* format, ...) asm(LINKED_NAME("__wrap_"));
void deliverToLibrary(p7::log_level level, unsigned short line, const char* file,
                      const char* function, const char* format, ...) asm(LINKED_NAME("__real_"));

namespace {

thread_local LogRecord* current = nullptr;

std::string formatted(const char* format, std::va_list values) {
    std::va_list again;
    va_copy(again, values);
    const int length = std::vsnprintf(nullptr, 0, format, values);
    std::string text(length < 0 ? 1 : static_cast<std::size_t>(length) + 1, '\0');
    static_cast<void>(std::vsnprintf(text.data(), text.size(), format, again));
    va_end(again);
    text.pop_back();
    return text;
}

} // namespace

void deliverRecorded(p7::log_level level, unsigned short line, const char* file,
                     const char* function, const char* format, ...) {
    std::va_list values;
    va_start(values, format);
    try {
        const std::string text = formatted(format, values);
        if (current != nullptr) {
            current->add(level, text);
        }
        deliverToLibrary(level, line, file, function, "%s", text.c_str());
    } catch (...) {
        // A message that cannot be passed on must not stop a conversion.
    }
    va_end(values);
}

LogRecord::LogRecord() {
    current = this;
}

LogRecord::~LogRecord() {
    current = nullptr;
}

void LogRecord::add(int level, const std::string& text) {
    constexpr std::size_t longestReason = 2000;
    if (level == p7::level_warning || m_reason.size() >= longestReason) {
        return;
    }
    const std::size_t end = text.find_last_not_of('\n') + 1;
    m_reason += m_reason.empty() ? "" : "; ";
    m_reason.append(text, 0, end < longestReason ? end : longestReason);
}
