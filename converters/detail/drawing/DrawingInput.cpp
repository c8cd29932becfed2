#include "converters/detail/drawing/DrawingInput.h"

#include "converters/detail/drawing/Refusal.h"
#include "converters/detail/input/FileSource.h"

#include <string>

namespace converters::drawing {

using input::ByteWindow;

namespace {

/// What is not read yet, and what is read already, takes no memory.
constexpr std::size_t windowCapacity = std::size_t{1} << 15;

} // namespace

ByteWindow windowOn(const void* bytes, std::size_t size) {
    return {bytes, size};
}

ByteWindow windowOn(const ByteSource& source, std::uint64_t size) {
    return {source, size, windowCapacity};
}

ByteWindow windowOn(const std::filesystem::path& file) {
    const auto refuse = [file](const std::string& reason) {
        throw Refusal{file.string() + ": " + reason};
    };
    return input::openFile(file, refuse, windowCapacity);
}

} // namespace converters::drawing
