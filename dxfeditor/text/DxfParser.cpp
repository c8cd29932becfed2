#include "dxfeditor/text/DxfParser.h"

#include "dxfeditor/DXFReader.h"
#include "dxfeditor/detail/reading/ClassicLocale.h"
#include "dxfeditor/detail/reading/DxfEntityDecoder.h"
#include "dxfeditor/detail/reading/DxfIntake.h"
#include "dxfeditor/text/DxfObjects.h"

#include <dxflib/dl_dxf.h>

#include <cstddef>
#include <istream>
#include <streambuf>
#include <string>
#include <typeinfo>

namespace dxfeditor {

namespace {

/// dxflib gets the text in pieces of about this many bytes: the memory that they take does not
/// grow with the drawing, and stays in the cache.
constexpr std::size_t pieceSize = std::size_t{1} << 18;

/// Reads a string in place.
class StringBuffer : public std::streambuf {
public:
    explicit StringBuffer(std::string& text) {
        setg(text.data(), text.data(), text.data() + text.size());
    }
};

/// Whether dxflib allocates what the object's counts say. It frees the arrays of the entity before
/// first and forgets to forget them: when the memory for the new ones is not there, its destructor
/// would free the old ones again. So one dxflib object gets one such entity.
bool hasCounts(const DxfObject& object) {
    return object.kind == DxfObjectKind::Spline || object.kind == DxfObjectKind::LwPolyline;
}

/// Hands what the intake has ready to dxflib.
void parsePiece(DxfIntake& intake, DxfEntityDecoder& decoder, DL_CreationInterface& reader) {
    if (intake.output().empty()) {
        return;
    }
    decoder.attributesWereSet();
    intake.close();
    StringBuffer buffer(intake.output());
    std::istream stream(&buffer);
    DL_Dxf().in(stream, &reader);
    intake.clearOutput();
}

} // namespace

std::string dxfIntake(std::string_view text) {
    DxfIntake intake(text);
    DxfObjects objects(text);
    for (DxfObject object; objects.next(object);) {
        intake.append(object);
    }
    intake.close();
    return intake.output();
}

void parseDxf(std::string_view text, DL_CreationInterface& reader, DxfDecoding decoding) {
    text = text.substr(0, text.find('\0'));
    const ClassicLocale classicLocale;
    DxfIntake intake(text);
    // What a class derived from the reader does in its callbacks is not known.
    DxfEntityDecoder decoder(typeid(reader) == typeid(DXFReader));
    DxfObjects objects(text);
    const auto next = [&](DxfObject& object) {
        return decoding == DxfDecoding::Ours ? decoder.next(objects, object) : objects.next(object);
    };
    for (DxfObject object; next(object);) {
        if (decoder.hasDecoded()) {
            parsePiece(intake, decoder, reader);
            decoder.report(reader);
            continue;
        }
        if (hasCounts(object)) {
            // Nothing is torn apart: these end a polyline that they follow.
            parsePiece(intake, decoder, reader);
        }
        intake.append(object);
        if (intake.output().size() >= pieceSize && intake.canBeClosed()) {
            parsePiece(intake, decoder, reader);
        }
    }
    parsePiece(intake, decoder, reader);
}

} // namespace dxfeditor
