#include "base/LargePages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

namespace base {

void askForLargePages(void* memory, std::size_t size) {
    // From here on the C library maps a buffer of its own, whose pages are all fresh.
    constexpr std::size_t largeBuffer = std::size_t(4) << 20;
    // Kernels with pages of other sizes have large pages of up to 512 MiB, too large to be touched
    // in part.
    constexpr std::size_t page = 4096;
    static const bool hasUsualPages = sysconf(_SC_PAGESIZE) == page;
    if (size < largeBuffer || !hasUsualPages) {
        return;
    }
    // Whole pages only.
    const std::size_t before = (page - reinterpret_cast<std::uintptr_t>(memory) % page) % page;
    // Some kernels have none, which is no error of the caller's.
    const int error = errno;
    madvise(static_cast<char*>(memory) + before, (size - before) / page * page, MADV_HUGEPAGE);
    errno = error;
}

} // namespace base
