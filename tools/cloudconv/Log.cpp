#include "tools/cloudconv/StandardError.h"
#include "universal_log_interface/universal_log_interface.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>

// The program defines p7::deliver itself: with the logging library's switch on, the library's
// messages are lines like the program's own.
void p7::deliver(log_level /*level*/, unsigned short /*line*/, const char* /*file*/,
                 const char* function, const char* format, ...) {
    const char* const value = std::getenv(ENABLE_LOG_ENV_VAR.c_str());
    if (value == nullptr || std::strcmp(value, "") == 0 || std::strcmp(value, "0") == 0) {
        return;
    }
    std::va_list values;
    va_start(values, format);
    try {
        // More than is printed, so that what is left out shows.
        std::string text(longestErrorText + 1, '\0');
        static_cast<void>(std::vsnprintf(text.data(), text.size() + 1, format, values));
        text.resize(text.find_last_not_of(std::string("\r\n\0", 3)) + 1);
        printToStandardError(std::string(function) + ": " + text);
    } catch (const std::exception&) {
        // A message that does not fit into memory must not stop a conversion.
    }
    va_end(values);
}
