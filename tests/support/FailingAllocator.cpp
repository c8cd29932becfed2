#include "tests/support/FailingAllocator.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <new>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<std::size_t> countdown{0};
std::atomic<bool> fromThenOn{false};
std::atomic<bool> failed{false};
std::atomic<std::size_t> blocks{0};
std::atomic<std::size_t> bytes{0};
std::atomic<std::size_t> peak{0};

/// Whether this allocation is one that fails.
bool fails() {
    if (countdown == 0 || (countdown > 1 && --countdown > 0)) {
        return false;
    }
    if (!fromThenOn) {
        countdown = 0;
    }
    failed = true;
    errno = ENOMEM;
    return true;
}

void* counted(void* block) {
    if (block != nullptr) {
        ++blocks;
        bytes += malloc_usable_size(block);
        peak = std::max(peak.load(), bytes.load());
    }
    return block;
}

void forget(void* block) {
    if (block != nullptr) {
        --blocks;
        bytes -= malloc_usable_size(block);
    }
}

} // namespace

namespace allocator {

Failing::Failing(std::size_t first, Failure failure) {
    failed = false;
    fromThenOn = failure == Failure::FromThenOn;
    // Counts down to 1, the one that fails; 0 stands for none.
    countdown = first;
}

Failing::~Failing() {
    countdown = 0;
}

bool hasFailed() {
    return failed;
}

std::size_t liveBlocks() {
    return blocks;
}

std::size_t liveBytes() {
    return bytes;
}

std::size_t peakBytes() {
    return peak;
}

void forgetPeak() {
    peak = bytes.load();
}

} // namespace allocator

extern "C" {

void* malloc(std::size_t size) {
    return fails() ? nullptr : counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) {
    return fails() ? nullptr : counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) {
    if (fails()) {
        return nullptr;
    }
    forget(block);
    return counted(__libc_realloc(block, size));
}

void* memalign(std::size_t alignment, std::size_t size) {
    return fails() ? nullptr : counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    void* const found = memalign(alignment, size);
    if (found == nullptr) {
        return ENOMEM;
    }
    *block = found;
    return 0;
}

void free(void* block) {
    forget(block);
    __libc_free(block);
}

} // extern "C"
