#include "converters/detail/OutputMemory.h"

#include "dxfeditor/detail/LargePages.h"

namespace converters::detail {

void reserveOutput(std::vector<unsigned char>& out, std::size_t capacity) {
    dxfeditor::reserveLarge(out, capacity);
}

void restartOutput(std::vector<unsigned char>& out, std::size_t capacity) {
    out.clear();
    if (out.capacity() < capacity) {
        std::vector<unsigned char>().swap(out);
    }
    reserveOutput(out, capacity);
}

} // namespace converters::detail
