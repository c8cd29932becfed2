#include "converters/detail/PlyPoints.h"

#include "dxfeditor/detail/LargePages.h"

namespace converters::detail {

void askForLargePages(void* memory, std::size_t size) {
    dxfeditor::askForLargePages(memory, size);
}

} // namespace converters::detail
