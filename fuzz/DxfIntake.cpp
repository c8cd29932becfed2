// What stands between a DXF text and dxflib: nothing harmful gets through, what the decoder takes
// past dxflib is what dxflib would have reported, and the intake of an intake's output is the same.
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFReader.h"
#include "dxfeditor/text/DxfParser.h"
#include "fuzz/support/Verify.h"
#include "tests/support/DrawingText.h"

#include <algorithm>
#include <string>

namespace {

using dxfeditor::DxfDecoding;

std::size_t longestLine(const std::string& text) {
    std::size_t longest = 0;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        longest = std::max(longest, end - begin);
        begin = end + 1;
    }
    return longest;
}

/// Layers, entities and the order of all callbacks.
std::string drawingOf(std::string_view text, DxfDecoding decoding) {
    DXFDocument document;
    DXFReader reader(document);
    dxfeditor::parseDxf(text, reader, decoding);
    std::string drawing = describe(document);
    CallbackRecorder recorder;
    dxfeditor::parseDxf(text, recorder, decoding);
    for (const std::string& call : recorder.calls) {
        drawing += call + '\n';
    }
    return drawing;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    const std::string intake = dxfeditor::dxfIntake(text.substr(0, text.find('\0')));
    constexpr std::size_t longestForDxflib = 1023;
    FUZZ_VERIFY(longestLine(intake) <= longestForDxflib);
    FUZZ_VERIFY(drawingOf(text, DxfDecoding::Ours) == drawingOf(text, DxfDecoding::Dxflib));
    return 0;
}
