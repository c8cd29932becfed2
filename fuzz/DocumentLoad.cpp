// DXFDocument::load on a file of any bytes; the drawing has to be that of the bytes in memory.
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFReader.h"
#include "fuzz/support/Verify.h"
#include "tests/support/DrawingText.h"

#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const int file = memfd_create("drawing", MFD_CLOEXEC);
    FUZZ_VERIFY(file >= 0 && ftruncate(file, 0) == 0);
    FUZZ_VERIFY(pwrite(file, bytes, size, 0) == static_cast<ssize_t>(size));

    const std::shared_ptr<DXFDocument> loaded =
        DXFDocument::load("/proc/self/fd/" + std::to_string(file));
    FUZZ_VERIFY(loaded != nullptr);
    DXFDocument document;
    DXFReader(document).load(reinterpret_cast<const char*>(bytes), size);
    FUZZ_VERIFY(describe(*loaded) == describe(document));
    return 0;
}
