#include "dxfeditor/detail/FileReader.h"

#include <array>
#include <fstream>

namespace dxfeditor {

bool readFile(const std::string& path, std::string& out) {
    std::ifstream file(path, std::ios::in | std::ios::binary);
    out.clear();
    if (!file.is_open()) {
        return false;
    }
    std::array<char, 1 << 16> block;
    do {
        file.read(block.data(), block.size());
        out.append(block.data(), static_cast<std::size_t>(file.gcount()));
    } while (file);
    return !file.bad();
}

} // namespace dxfeditor
