#pragma once

#include <string>

/// Marks what the logging library exports.
#define UNIVERSAL_LOG_INTERFACE_EXPORT __attribute__((visibility("default")))

/// The logging interface that every unit of the converters reports through.
///
/// The library behind it can be replaced: a program, or a library loaded earlier, that defines
/// p7::deliver itself receives every message instead. It had better not throw: some callers let the
/// exception pass, for others it ends the process.
namespace p7 {

/// Rank of a message. Callers of deliver pass the number.
enum log_level : int {
    level_info = 0,
    level_warning = 1,
    level_error = 2,
};

/// Environment variable that switches the output of messages on. Each unit that includes this
/// header has its own copy.
const std::string ENABLE_LOG_ENV_VAR = "VOLMAR_ENABLE_LOG";

/// Delivers one message.
///
/// This implementation is silent unless the environment variable named by ENABLE_LOG_ENV_VAR is
/// set to something other than "" and "0" at the time of the call. Then it writes one line to
/// standard error: time, level, file:line, function, text. Line ends and other control characters
/// inside the text are written as `\xHH`, so that a message never takes two lines; line ends at its
/// end are dropped. It throws nothing and may be called from any thread.
///
/// @param level     rank of the message
/// @param line      source line of the call
/// @param file      path of the calling unit, without extension; not null
/// @param function  short name of the calling function; not null
/// @param format    printf format of the text, followed by its values; not null
UNIVERSAL_LOG_INTERFACE_EXPORT void deliver(log_level level, unsigned short line, const char* file,
                                            const char* function, const char* format, ...)
    __attribute__((format(printf, 5, 6)));

} // namespace p7
