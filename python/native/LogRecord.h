#pragma once

#include <string>

/// Keeps why a conversion on this thread fails: while it lives, the messages that the library
/// delivers on this thread are recorded before they go on to the logging library.
///
/// One lives at a time on a thread.
class LogRecord {
public:
    LogRecord();
    ~LogRecord();
    LogRecord(const LogRecord&) = delete;
    LogRecord& operator=(const LogRecord&) = delete;

    /// The recorded messages that are no warnings, joined by "; ". A long text is cut; bytes are as
    /// logged and need not be UTF-8.
    const std::string& reason() const { return m_reason; }

    /// Takes one message.
    void add(int level, const std::string& text);

private:
    std::string m_reason;
};
