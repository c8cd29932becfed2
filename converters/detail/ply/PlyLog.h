#pragma once

#include "universal_log_interface/universal_log_interface.h"

/// Reporting of the PLY codec.
namespace converters::detail {

/// Path under which the whole codec reports, whichever of its files a message comes from.
constexpr char plyUnit[] = "converters/PlySerializerDeserializer";

// All callers give literal formats, which clang does not see through the template.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"

/// Delivers one message of the codec; what the logging library throws reaches the caller.
///
/// @param level     0, 1 or 2
/// @param line      the caller's __LINE__
/// @param function  short name of the caller
/// @param format    printf format of the text, followed by its values
template <typename... Values>
void deliver(int level, int line, const char* function, const char* format, Values... values) {
    p7::deliver(static_cast<p7::log_level>(level), static_cast<unsigned short>(line), plyUnit,
                function, format, values...);
}

#pragma GCC diagnostic pop

/// As deliver, for callers that cannot go on without their log: an exception ends the process.
template <typename... Values>
void deliverOrTerminate(int level, int line, const char* function, const char* format,
                        Values... values) noexcept {
    deliver(level, line, function, format, values...);
}

} // namespace converters::detail
