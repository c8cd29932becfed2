#pragma once

#include <ostream>
#include <string>
#include <vector>

/// One message that the library delivered.
struct LogMessage {
    int level;
    std::string file;
    std::string function;
    std::string text;
    /// Source line of the call; not compared.
    int line = 0;
};

bool operator==(const LogMessage& a, const LogMessage& b);
std::ostream& operator<<(std::ostream& stream, const LogMessage& message);

/// Captures the messages delivered while it lives, from all threads.
///
/// Every test executable defines p7::deliver itself, through this unit; without a CapturedLog the
/// messages are dropped. One lives at a time.
class CapturedLog {
public:
    CapturedLog();
    ~CapturedLog();
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    /// The messages so far, in order of delivery.
    std::vector<LogMessage> messages() const;
};

/// Makes p7::deliver throw std::runtime_error("deliver") while it lives.
class ThrowingLog {
public:
    /// @param messagesBefore  how many messages are delivered before the first that throws
    explicit ThrowingLog(int messagesBefore = 0);
    ~ThrowingLog();
    ThrowingLog(const ThrowingLog&) = delete;
    ThrowingLog& operator=(const ThrowingLog&) = delete;
};
