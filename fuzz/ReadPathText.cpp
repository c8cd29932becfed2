// converters::readPath on any text: refused with a reason, or a path that is sound.
#include "fuzz/support/PathVerification.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    verifyReadPath(bytes, size);
    return 0;
}
