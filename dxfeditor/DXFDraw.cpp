#include "dxfeditor/DXFDraw.h"

#include "dxfeditor/DXFAdapter.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFPolyline.h"

#include <typeinfo>

namespace {

constexpr const char* layerName = "1";
constexpr int openPolyline = 0;
constexpr int closedPolyline = 1;

std::shared_ptr<DXFAttributes> attributesOfWidth(int width) {
    return DXFAdapter::makeAttributes(DL_Attributes(layerName, 7, 7, width, "CONTINUOUS", -1));
}

std::shared_ptr<DXFPolyline> newPolyline(int flags) {
    return DXFAdapter::makePolyline(DL_PolylineData(1, 7, 7, flags, 0.0));
}

} // namespace

DXFDraw::DXFDraw(const std::string& outputPath) : path(outputPath), writer(document) {}

DXFDraw::~DXFDraw() = default;

void DXFDraw::setPath(const std::string& outputPath) {
    path = outputPath;
}

bool DXFDraw::setupFile() {
    layer = DXFAdapter::makeLayer(DL_LayerData(layerName, 0));
    layer->setAttributes(attributesOfWidth(-1));
    return document.addLayer(layer);
}

void DXFDraw::createEntity() {
    entities.push_back(newPolyline(openPolyline));
    entities.back()->setAttributes(attributesOfWidth(10));
}

bool DXFDraw::drawPoly() {
    if (entities.empty()) {
        entities.push_back(newPolyline(closedPolyline));
    }
    const std::shared_ptr<DXFPolyline> polyline =
        std::dynamic_pointer_cast<DXFPolyline>(entities.back());
    if (!polyline) {
        throw std::bad_cast();
    }
    const double corners[4][2] = {{1.5, 1.0}, {10.0, 1.0}, {10.0, 10.0}, {1.5, 10.0}};
    for (const auto& [x, y] : corners) {
        polyline->appendPoint(DXFVertex(x, y, 0.0, true, 0.0));
    }
    polyline->setup();
    return document.addEntity(polyline) && saveFile();
}

void DXFDraw::clean() {
    for (const std::shared_ptr<DXFEntity>& entity : entities) {
        document.deleteEntity(entity);
    }
}

bool DXFDraw::saveFile() {
    return writer.save(path);
}
