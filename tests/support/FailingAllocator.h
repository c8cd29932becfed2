#pragma once

#include <cstddef>

/// The C library's allocator, which all of a test executable's memory comes from, made to fail.
///
/// Every executable that links this unit has its malloc and so its operator new. Not to be linked
/// into builds with sanitizers, which have their own.
namespace allocator {

/// What fails.
enum class Failure {
    /// One allocation; those after it succeed.
    Once,
    /// One allocation and all after it.
    FromThenOn,
};

/// Lets allocations fail while it lives, beginning with number `first`, from 1.
class Failing {
public:
    Failing(std::size_t first, Failure failure);
    ~Failing();
    Failing(const Failing&) = delete;
    Failing& operator=(const Failing&) = delete;
};

/// Whether an allocation has failed since the last Failing began.
bool hasFailed();

/// Number of blocks that are allocated now.
std::size_t liveBlocks();

/// Bytes that are allocated now.
std::size_t liveBytes();

/// The most bytes that were allocated at a time since the last call of forgetPeak().
std::size_t peakBytes();
void forgetPeak();

} // namespace allocator
