#include "converters/detail/OutputMemory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace converters::detail {
namespace {

/// From here on the C library maps a buffer of its own, whose pages are all fresh.
constexpr std::size_t largeBuffer = std::size_t(4) << 20;

/// Only a hint: what it returns changes nothing. Kernels with pages of other sizes than 4 KiB have
/// large pages of up to 512 MiB, too large to be touched in part.
void askForLargePages(unsigned char* memory, std::size_t size) {
    constexpr std::size_t page = 4096;
    static const bool hasUsualPages = sysconf(_SC_PAGESIZE) == page;
    // Whole pages only.
    const std::size_t before = (page - reinterpret_cast<std::uintptr_t>(memory) % page) % page;
    if (hasUsualPages && size > before) {
        madvise(memory + before, (size - before) / page * page, MADV_HUGEPAGE);
    }
}

} // namespace

void reserveOutput(std::vector<unsigned char>& out, std::size_t capacity) {
    if (out.capacity() >= capacity) {
        return;
    }
    out.reserve(capacity);
    if (capacity >= largeBuffer) {
        askForLargePages(out.data(), out.capacity());
    }
}

void restartOutput(std::vector<unsigned char>& out, std::size_t capacity) {
    out.clear();
    if (out.capacity() < capacity) {
        std::vector<unsigned char>().swap(out);
    }
    reserveOutput(out, capacity);
}

} // namespace converters::detail
