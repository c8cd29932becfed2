#include "base/FileReader.h"

#include "base/LargePages.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>

namespace base {

namespace {

template <typename Bytes>
bool readInto(Bytes& out, const std::string& path) {
    out.clear();
    std::ifstream file(path, std::ios::in | std::ios::binary);
    if (!file.is_open()) {
        return false;
    }
    // A hint only: pipes have no size, and a file may grow.
    std::error_code unknown;
    const std::uintmax_t size = std::filesystem::file_size(path, unknown);
    std::uintmax_t blockSize = 1 << 18;
    if (!unknown && size > 0) {
        out.reserve(size);
        askForLargePages(out.data(), out.capacity());
        // Of a small file, the first touch of the block would take longer than reading it.
        blockSize = std::min(blockSize, size / 8 + 4096);
    }
    // As it is: a vector would be filled first.
    const std::unique_ptr<char[]> block(new char[blockSize]);
    while (file) {
        file.read(block.get(), static_cast<std::streamsize>(blockSize));
        out.insert(out.end(), block.get(), block.get() + file.gcount());
    }
    // A directory opens but cannot be read: that sets badbit, the end of a file does not.
    if (file.bad()) {
        out.clear();
    }
    return !file.bad();
}

} // namespace

bool readFile(const std::string& path, std::string& out) {
    return readInto(out, path);
}

bool readFile(const std::string& path, std::vector<unsigned char>& out) {
    return readInto(out, path);
}

} // namespace base
