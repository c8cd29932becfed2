// converters::readPath on binary drawings: what follows their mark may be anything. An input
// without the mark gets it.
#include "fuzz/support/PathVerification.h"

#include <cstring>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const char mark[] = "AutoCAD Binary DXF\r\n\x1a";
    // With the NUL at its end.
    if (size >= sizeof mark && std::memcmp(bytes, mark, sizeof mark) == 0) {
        verifyReadPath(bytes, size);
        return 0;
    }
    std::vector<std::uint8_t> marked(mark, mark + sizeof mark);
    marked.insert(marked.end(), bytes, bytes + size);
    verifyReadPath(marked.data(), marked.size());
    return 0;
}
