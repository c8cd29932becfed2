#include "converters/detail/ply/PlyPoints.h"

#include "base/LargePages.h"

namespace converters::detail {

void askForLargePages(void* memory, std::size_t size) {
    base::askForLargePages(memory, size);
}

} // namespace converters::detail
