#include "dxfeditor/DXFDocument.h"

#include "base/stitching/Stitching.h"
#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFLineType.h"
#include "dxfeditor/DXFReader.h"
#include "dxfeditor/WalkNumbers.h"
#include "dxfeditor/detail/model/EntityList.h"
#include "dxfeditor/detail/walking/Output.h"
#include "dxfeditor/detail/walking/Sampling.h"

#include <utility>

namespace {

/// Appends `element` to `list` and to the index of names, unless its name is there already. When
/// memory runs out, both stay as they were.
template <typename Element>
bool addByName(std::shared_ptr<Element> element, std::list<std::shared_ptr<Element>>& list,
               std::map<std::string, std::shared_ptr<Element>>& byName) {
    list.push_back(element);
    try {
        if (element == nullptr || byName.emplace(element->name(), element).second) {
            return true;
        }
    } catch (...) {
        list.pop_back();
        throw;
    }
    list.pop_back();
    return false;
}

} // namespace

std::shared_ptr<DXFDocument> DXFDocument::load(const std::string& path) {
    auto document = std::make_shared<DXFDocument>();
    DXFReader reader(*document);
    if (!reader.load(path)) {
        document.reset();
    }
    return document;
}

DXFDocument::DXFDocument() : m_entities(std::make_unique<dxfeditor::EntityList>()) {}

DXFDocument::~DXFDocument() = default;

bool DXFDocument::addEntity(std::shared_ptr<DXFEntity> entity) {
    m_entities->add(std::move(entity));
    return true;
}

bool DXFDocument::deleteEntity(std::shared_ptr<DXFEntity> entity) {
    m_entities->remove(std::move(entity));
    return true;
}

bool DXFDocument::addLayer(std::shared_ptr<DXFLayer> layer) {
    return addByName(std::move(layer), m_layers, m_layerByName);
}

bool DXFDocument::addLineType(std::shared_ptr<DXFLineType> lineType) {
    return addByName(std::move(lineType), m_lineTypes, m_lineTypeByName);
}

std::shared_ptr<DXFLayer> DXFDocument::getLayer(const std::string& name) const {
    const auto found = m_layerByName.find(name);
    return found == m_layerByName.end() ? nullptr : found->second;
}

std::list<std::shared_ptr<DXFLayer>> DXFDocument::layers() const {
    return m_layers;
}

std::list<std::shared_ptr<DXFEntity>> DXFDocument::entities() const {
    return m_entities->copy();
}

void DXFDocument::setup() {
    if (!m_setupPending) {
        return;
    }
    for (const std::shared_ptr<DXFEntity>& entity : m_entities->slots()) {
        if (entity != nullptr) {
            entity->setup();
        }
    }
    m_setupPending = false;
}

std::vector<cv::Point3_<double>> DXFDocument::getPoints() const {
    return walk(nullptr, nullptr, {});
}

std::vector<cv::Point3_<double>> DXFDocument::getPoints(std::vector<DXFContour>& contours) const {
    contours.clear();
    return walk(&contours, nullptr, {});
}

std::vector<cv::Point3_<double>>
DXFDocument::getPoints(std::vector<DXFContour>& contours, std::vector<DXFPiece>& pieces,
                       const std::function<void(double)>& progress) const {
    contours.clear();
    pieces.clear();
    return walk(&contours, &pieces, progress);
}

std::vector<cv::Point3_<double>>
DXFDocument::walk(std::vector<DXFContour>* contours, std::vector<DXFPiece>* pieces,
                  const std::function<void(double)>& progress) const {
    // What the stages take of a drawing of lines.
    constexpr double sampled = 0.2;
    constexpr double stitched = 0.7;
    const dxfeditor::Entities& entities = m_entities->slots();
    dxfeditor::Runs drawing = dxfeditor::runsOf(entities, {progress, 0.0, sampled});
    std::vector<cv::Point3_<double>> points = dxfeditor::roomFor(drawing.runs, entities);
    // A statement of its own: at its end the ends are freed, before the points are written.
    const base::Walk order =
        base::stitch(std::move(drawing.ends), base::JoinDistance(dxfeditor::joinDistance),
                     {progress, sampled, stitched});
    dxfeditor::append(order, drawing.runs, entities, points, contours, pieces,
                      {progress, stitched, 1.0});
    return points;
}
