#include "dxfeditor/DXFReader.h"

#include "base/FileReader.h"
#include "dxfeditor/DXFAdapter.h"
#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFLineType.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"
#include "dxfeditor/detail/model/AttributeCache.h"
#include "dxfeditor/text/DxfParser.h"

#include <string_view>
#include <typeinfo>
#include <utility>

namespace {

/// The entity as `Entity`, or null when its kind is not `type`.
template <typename Entity>
Entity* entityOfType(const std::shared_ptr<DXFEntity>& entity, int type) {
    if (entity == nullptr || entity->type() != type) {
        return nullptr;
    }
    // Nearly all entities are of the very class, which is told much faster. One that lies about its
    // type is a fault in the model, hence the cast that throws.
    DXFEntity& any = *entity;
    return typeid(any) == typeid(Entity) ? static_cast<Entity*>(&any) : &dynamic_cast<Entity&>(any);
}

} // namespace

DXFReader::DXFReader(DXFDocument& document)
    : m_document(document), m_records(std::make_unique<dxfeditor::AttributeCache>()) {}

DXFReader::~DXFReader() = default;

bool DXFReader::load(const std::string& path) {
    std::string text;
    if (!base::readFile(path, text)) {
        return false;
    }
    dxfeditor::parseDxf(text, *this);
    return true;
}

bool DXFReader::load(std::vector<char> bytes) {
    if (bytes.data() == nullptr) {
        return false;
    }
    dxfeditor::parseDxf(std::string_view(bytes.data(), bytes.size()), *this);
    return true;
}

bool DXFReader::load(const char* bytes, std::size_t size) {
    if (size == 0) {
        return false;
    }
    dxfeditor::parseDxf(std::string_view(bytes, size), *this);
    return true;
}

void DXFReader::addLayer(const DL_LayerData& data) {
    const std::shared_ptr<DXFLayer> layer = DXFAdapter::makeLayer(data);
    layer->setAttributes(m_records->recordOf(attributes));
    m_document.addLayer(layer);
}

void DXFReader::addLinetype(const DL_LinetypeData& data) {
    m_document.addLineType(DXFAdapter::makeLineType(data));
}

void DXFReader::addBlock(const DL_BlockData& /*data*/) {
    m_inBlock = true;
}

void DXFReader::endBlock() {
    m_inBlock = false;
}

void DXFReader::addPoint(const DL_PointData& data) {
    if (auto* points = entityOfType<DXFPointVector>(m_current, DXFEntityType::PointVector)) {
        points->addPoint({data.x, data.y, data.z});
    } else if (auto* first = entityOfType<DXFPoint>(m_current, DXFEntityType::Point)) {
        std::shared_ptr<DXFEntity> both = DXFAdapter::makePointVector(
            {{first->mX(), first->mY(), first->mZ()}, {data.x, data.y, data.z}});
        // Handed over: the document finds a point that nobody else holds without a search.
        m_document.deleteEntity(std::move(m_current));
        startSimple(std::move(both));
    } else {
        startSimple(DXFAdapter::makePoint(data));
    }
}

void DXFReader::addLine(const DL_LineData& data) {
    startSimple(DXFAdapter::makeLine(data));
}

void DXFReader::addCircle(const DL_CircleData& data) {
    startSimple(DXFAdapter::makeCircle(data));
}

void DXFReader::addArc(const DL_ArcData& data) {
    startSimple(DXFAdapter::makeArc(data));
}

void DXFReader::addPolyline(const DL_PolylineData& data) {
    startComposite(DXFAdapter::makePolyline(data));
}

void DXFReader::addVertex(const DL_VertexData& data) {
    if (auto* polyline = entityOfType<DXFPolyline>(m_current, DXFEntityType::Polyline)) {
        polyline->appendPoint(DXFVertex(data.x, data.y, data.z, true, data.bulge));
    }
}

void DXFReader::addSpline(const DL_SplineData& data) {
    if (!m_inBlock) {
        startComposite(DXFAdapter::makeSpline(data));
    }
}

void DXFReader::addControlPoint(const DL_ControlPointData& data) {
    if (DXFSpline* spline = currentSpline()) {
        spline->appendControlPoint(data.x, data.y, data.z, data.w);
    }
}

void DXFReader::addKnot(const DL_KnotData& data) {
    if (DXFSpline* spline = currentSpline()) {
        spline->appendKnot(data.k);
    }
}

void DXFReader::addFitPoint(const DL_FitPointData& data) {
    if (DXFSpline* spline = currentSpline()) {
        spline->appendFitPoint(data.x, data.y, data.z);
    }
}

void DXFReader::endEntity() {
    const bool isSimple = std::exchange(m_unended, false);
    if (m_current == nullptr) {
        return;
    }
    if (m_inBlock) {
        m_current.reset();
        return;
    }
    if (!isSimple) {
        shrinkCurrent();
    }
    importEntity(m_current);
    m_document.addEntity(m_current);
}

/// Gives back the memory that the current entity has for parts to come.
void DXFReader::shrinkCurrent() {
    if (auto* polyline = entityOfType<DXFPolyline>(m_current, DXFEntityType::Polyline)) {
        polyline->shrinkToFit();
    } else if (auto* spline = entityOfType<DXFSpline>(m_current, DXFEntityType::Spline)) {
        spline->shrinkToFit();
    }
}

void DXFReader::endSection() {
    if (m_inBlock) {
        m_current.reset();
    }
    if (m_unended) {
        endEntity();
    }
}

void DXFReader::importEntity(std::shared_ptr<DXFEntity> entity) {
    entity->setAttributes(m_records->recordOf(attributes));
}

DXFSpline* DXFReader::currentSpline() const {
    return m_inBlock ? nullptr : entityOfType<DXFSpline>(m_current, DXFEntityType::Spline);
}

void DXFReader::startSimple(std::shared_ptr<DXFEntity> entity) {
    m_current = std::move(entity);
    m_unended = true;
}

void DXFReader::startComposite(std::shared_ptr<DXFEntity> entity) {
    m_current = std::move(entity);
    m_unended = false;
}
