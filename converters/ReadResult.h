#pragma once

#include <cstdint>
#include <string>

namespace converters {

/// What became of reading a file: success, or the reason why not, in words for a person.
struct ReadResult {
    /// Whether the file was read. What is read as a whole is untouched when not.
    bool success = false;
    /// Why the file was refused, without a full stop, where known with the place in front: "line
    /// 12: '1,5' is no number; a decimal comma?". Empty after success.
    std::string reason;
    /// The line of the file that the reason is about, counted from 1; 0 where it is about none.
    std::uint64_t line = 0;

    /// Whether the file was read.
    explicit operator bool() const { return success; }
};

} // namespace converters
