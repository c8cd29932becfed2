#pragma once

#include <string>

/// Collects what the library logs while it lives. One lives at a time.
///
/// The program defines p7::deliver itself, through this unit, so that the library's messages come
/// here. They are printed as well when the logging library's switch, VOLMAR_ENABLE_LOG, is on.
class CollectedLog {
public:
    CollectedLog();
    ~CollectedLog();
    CollectedLog(const CollectedLog&) = delete;
    CollectedLog& operator=(const CollectedLog&) = delete;

    /// The first message of the highest rank, without line ends: the most specific reason of a
    /// failure comes first. `otherwise` when nothing was logged.
    std::string reason(const std::string& otherwise) const;
};
