#pragma once

#include <cstddef>
#include <vector>

namespace base {

/// Asks the kernel for large pages for memory that has not been touched yet, if it is large: the
/// first touch of small ones takes longer than filling them, and each search in them longer too.
/// Only a hint: without it, all is the same; errno stays as it is.
void askForLargePages(void* memory, std::size_t size);

/// Like the vector's reserve, with large pages for a large buffer.
template <typename Element>
void reserveLarge(std::vector<Element>& elements, std::size_t capacity) {
    if (elements.capacity() < capacity) {
        elements.reserve(capacity);
        askForLargePages(elements.data(), elements.capacity() * sizeof(Element));
    }
}

} // namespace base
