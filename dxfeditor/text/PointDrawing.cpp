#include "dxfeditor/text/PointDrawing.h"

#include "dxfeditor/detail/writing/DxfTextWriter.h"

#include <dxflib/dl_dxf.h>

namespace dxfeditor {
namespace {

constexpr DL_Codes::version release12 = DL_Codes::AC1009;

DL_Attributes attributesOf(const char* layer) {
    return {layer, 7, -1, -1, "CONTINUOUS", -1};
}

void beginTable(const DxfTextWriter& text, const char* name, int entries) {
    text.dxfString(0, "TABLE");
    text.dxfString(2, name);
    text.dxfInt(70, entries);
}

void writeTables(DL_Dxf& engine, DxfTextWriter& text) {
    text.sectionTables();
    beginTable(text, "LTYPE", 1);
    engine.writeLinetype(text, DL_LinetypeData("CONTINUOUS", "Solid Line", 0, 0, 0.0, nullptr));
    text.tableEnd();
    beginTable(text, "LAYER", 2);
    for (const char* layer : {"0", "1"}) {
        engine.writeLayer(text, DL_LayerData(layer, 0), attributesOf(layer));
    }
    text.tableEnd();
    text.sectionEnd();
}

} // namespace

PointDrawing::PointDrawing() {
    DL_Dxf engine;
    // No file has an empty name: this only tells the engine the release.
    static_cast<void>(engine.out("", release12));
    m_pointHead = DxfTextWriter(release12).pointHead(attributesOf("0"));

    DxfTextWriter text(release12);
    engine.writeHeader(text);
    text.sectionEnd();
    writeTables(engine, text);
    text.sectionBlocks();
    text.sectionEnd();
    text.sectionEntities();
    m_beginning = text.text();

    DxfTextWriter last(release12);
    last.sectionEnd();
    last.dxfEOF();
    m_end = last.text();
}

void PointDrawing::append(const cv::Point3_<double>& point, std::string& text) const {
    appendPoint(m_pointHead, point, text);
}

} // namespace dxfeditor
