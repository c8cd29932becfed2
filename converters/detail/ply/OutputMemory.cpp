#include "converters/detail/ply/OutputMemory.h"

#include "base/LargePages.h"

namespace converters::detail {

void reserveOutput(std::vector<unsigned char>& out, std::size_t capacity) {
    base::reserveLarge(out, capacity);
}

void restartOutput(std::vector<unsigned char>& out, std::size_t capacity) {
    out.clear();
    if (out.capacity() < capacity) {
        std::vector<unsigned char>().swap(out);
    }
    reserveOutput(out, capacity);
}

} // namespace converters::detail
