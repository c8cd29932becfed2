#include "universal_log_interface/universal_log_interface.h"

#include <pthread.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>

namespace p7 {
namespace {

bool isEnabled() {
    const char* value = std::getenv(ENABLE_LOG_ENV_VAR.c_str());
    return value != nullptr && std::strcmp(value, "") != 0 && std::strcmp(value, "0") != 0;
}

spdlog::level::level_enum spdlogLevel(log_level level) {
    switch (level) {
    case level_info:
        return spdlog::level::info;
    case level_warning:
        return spdlog::level::warn;
    default:
        return spdlog::level::err;
    }
}

/// Held while the logger is made or used. A child of fork has the thread alone that called it, so a
/// lock that another one held at that moment would never be released there: fork waits for it.
std::mutex loggerMutex;

[[maybe_unused]] const int isForkAwaited = pthread_atfork(
    [] { loggerMutex.lock(); }, [] { loggerMutex.unlock(); }, [] { loggerMutex.unlock(); });

/// The process's logger, for who holds the mutex. It is never destroyed: a static object's
/// destructor may still log.
spdlog::logger& standardErrorLogger() {
    static auto* const logger = [] {
        auto* created =
            new spdlog::logger("converters", std::make_shared<spdlog::sinks::stderr_sink_st>());
        created->set_pattern("%Y-%m-%d %H:%M:%S.%e %l %g:%# %! %v");
        created->set_level(spdlog::level::trace);
        created->flush_on(spdlog::level::trace);
        return created;
    }();
    return *logger;
}

std::string formatted(const char* format, std::va_list values) {
    std::va_list again;
    va_copy(again, values);
    const int length = std::vsnprintf(nullptr, 0, format, values);
    std::string text;
    if (length > 0) {
        text.resize(static_cast<std::size_t>(length) + 1);
        static_cast<void>(std::vsnprintf(text.data(), text.size(), format, again));
        text.pop_back();
    }
    va_end(again);
    return text;
}

/// The text as a single line that cannot steer a terminal: files decide what messages quote.
std::string singleLine(const std::string& text) {
    const std::size_t end = text.find_last_not_of("\r\n") + 1;
    std::string line;
    line.reserve(end);
    for (std::size_t i = 0; i < end; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= 0x20 && byte != 0x7F) {
            line += text[i];
        } else {
            constexpr char digits[] = "0123456789ABCDEF";
            line += {'\\', 'x', digits[byte >> 4], digits[byte & 0xF]};
        }
    }
    return line;
}

} // namespace

void deliver(log_level level, unsigned short line, const char* file, const char* function,
             const char* format, ...) {
    if (!isEnabled()) {
        return;
    }
    std::va_list values;
    va_start(values, format);
    try {
        const std::string text = singleLine(formatted(format, values));
        const std::lock_guard<std::mutex> lock(loggerMutex);
        standardErrorLogger().log(spdlog::source_loc{file, line, function}, spdlogLevel(level),
                                  text);
    } catch (...) {
        // A message that cannot be written must not stop a conversion.
    }
    va_end(values);
}

} // namespace p7
