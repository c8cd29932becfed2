#include "dxfeditor/DXFWriter.h"

#include "dxfeditor/DXFAdapter.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFLineType.h"
#include "dxfeditor/VisitEntity.h"
#include "dxfeditor/detail/writing/DxfFileWriter.h"
#include "universal_log_interface/universal_log_interface.h"

#include <dxflib/dl_dxf.h>

#include <exception>

namespace {

constexpr DL_Codes::version outputVersion = DL_Codes::AC1009; // release R12
// Later releases want a handle and class names with every table and table entry.
constexpr DL_Codes::version firstVersionWithHandles = DL_Codes::AC1015;

constexpr const char* sourceFile = "dxfeditor/DXFWriter";

/// The attributes of the layer "0" that a drawing gets when it has none.
std::shared_ptr<DXFAttributes> defaultAttributes() {
    return DXFAdapter::makeAttributes(DL_Attributes("0", 7, -1, -1, "CONTINUOUS", -1));
}

DL_Attributes recordOf(const std::shared_ptr<DXFAttributes>& attributes) {
    return DXFAdapter::makeAttributes(attributes ? attributes : defaultAttributes());
}

void reportUnsupportedEntity() {
    p7::deliver(p7::level_info, __LINE__, sourceFile, "fillEntities",
                "DXFWriter:: attempted writing of unsuported entity");
}

/// Writes a table entry as dxflib does, without what it prints on standard error: a layer without a
/// name is left out, and a colour beyond the 255 of R12 becomes 7.
void writeLayer(DL_Dxf& engine, DL_WriterA& file, const DL_LayerData& layer,
                DL_Attributes attributes) {
    constexpr int firstColorBeyond = 256;
    constexpr int white = 7;
    if (layer.name.empty()) {
        return;
    }
    if (attributes.getColor() >= firstColorBeyond) {
        attributes.setColor(white);
    }
    engine.writeLayer(file, layer, attributes);
}

/// Writes an entity of one of the kinds that can be written.
class EntityWriter {
public:
    EntityWriter(DL_Dxf& engine, dxfeditor::DxfFileWriter& file,
                 const std::shared_ptr<DXFEntity>& entity)
        : m_engine(engine), m_file(file), m_entity(entity),
          m_attributes(recordOf(entity->attributes())) {}

    void operator()(DXFPolyline& polyline) const {
        m_engine.writePolyline(m_file, DXFAdapter::makePolyline(shared(polyline)), m_attributes);
        for (const DXFVertex& vertex : polyline.vertices()) {
            m_engine.writeVertex(m_file, DXFAdapter::makeVertex(vertex));
        }
        m_engine.writePolylineEnd(m_file);
    }
    void operator()(DXFPoint& point) const {
        m_engine.writePoint(m_file, DXFAdapter::makePoint(shared(point)), m_attributes);
    }
    void operator()(DXFPointVector& vector) const {
        m_file.writePoints(m_attributes, vector.points());
    }
    /// The other kinds.
    void operator()(DXFEntity&) const {}

    static bool canWrite(int type) {
        return type == DXFEntityType::Polyline || type == DXFEntityType::Point ||
               type == DXFEntityType::PointVector;
    }

private:
    /// The entity as what it is, for the adapter.
    template <typename Kind>
    std::shared_ptr<Kind> shared(Kind& kind) const {
        return {m_entity, &kind};
    }

    DL_Dxf& m_engine;
    dxfeditor::DxfFileWriter& m_file;
    const std::shared_ptr<DXFEntity>& m_entity;
    DL_Attributes m_attributes;
};

} // namespace

DXFWriter::DXFWriter(const DXFDocument& document) : m_document(document) {}

DXFWriter::~DXFWriter() = default;

bool DXFWriter::hasOpenFile() const {
    return m_file && m_file->isOpen();
}

bool DXFWriter::save(const std::string& path) {
    // An unfinished file is closed first: it may be the one at `path`.
    m_file.reset();
    m_file = dxfeditor::DxfFileWriter::create(path, outputVersion);
    return saveInto(path);
}

bool DXFWriter::saveTo(int file, const std::string& path) {
    m_file.reset();
    m_file = dxfeditor::DxfFileWriter::onFile(file, outputVersion);
    return saveInto(path);
}

/// Writes the drawing into the file that was opened, if it was.
bool DXFWriter::saveInto(const std::string& path) {
    m_engine = std::make_unique<DL_Dxf>();
    m_whyNotOpened.clear();
    if (!m_file) {
        // A path ends at its first NUL for the system, too.
        m_whyNotOpened = std::string("DXFWriter: Cannot open ") + path.c_str() + " for writing.";
        p7::deliver(p7::level_info, __LINE__, sourceFile, "save", "%s", m_whyNotOpened.c_str());
        return false;
    }
    // The only way to tell the engine its version. No file has this name: nothing is opened.
    const std::unique_ptr<DL_WriterA> none(m_engine->out("", outputVersion));

    writeHeader();
    m_file->sectionTables();
    writeLineType_table();
    writeLAYER_table();
    m_file->sectionEnd();
    m_file->sectionBlocks();
    m_file->sectionEnd();
    const bool complete = writeEntities_section();
    if (complete) {
        m_file->dxfEOF();
    }
    m_file->flush();
    // After an entity that cannot be written, the file stays open.
    if (complete || !m_file->succeeded()) {
        m_file->close();
    }
    return complete && m_file->succeeded();
}

void DXFWriter::writeHeader() {
    if (!hasOpenFile()) {
        return;
    }
    m_engine->writeHeader(*m_file);
    m_file->sectionEnd();
}

void DXFWriter::beginTable(const char* name, int handle, int entries) {
    m_file->dxfString(0, "TABLE");
    m_file->dxfString(2, name);
    if (m_file->dxfVersion() >= firstVersionWithHandles) {
        m_file->dxfHex(5, handle);
        m_file->dxfString(100, "AcDbSymbolTable");
    }
    m_file->dxfInt(70, entries);
}

void DXFWriter::writeLineType_table() {
    if (!hasOpenFile()) {
        return;
    }
    const std::list<std::shared_ptr<DXFLineType>> lineTypes = {
        DXFAdapter::makeLineType(DL_LinetypeData("CONTINUOUS", "Solid Line", 0, 0, 0.0, nullptr))};
    beginTable("LTYPE", 5, static_cast<int>(lineTypes.size()));
    for (const std::shared_ptr<DXFLineType>& lineType : lineTypes) {
        m_engine->writeLinetype(*m_file, DXFAdapter::makeLineType(lineType));
    }
    m_file->tableEnd();
}

void DXFWriter::writeLAYER_table() {
    if (!hasOpenFile()) {
        return;
    }
    std::list<std::shared_ptr<DXFLayer>> layers = m_document.layers();
    layers.remove(nullptr);
    if (!m_document.getLayer("0")) {
        const std::shared_ptr<DXFLayer> layer = DXFAdapter::makeLayer(DL_LayerData("0", 0));
        layer->setAttributes(defaultAttributes());
        layers.push_front(layer);
        for (const std::shared_ptr<DXFEntity>& entity : m_document.entities()) {
            if (entity && !entity->attributes()) {
                entity->setAttributes(layer->attributes());
            }
        }
    }
    beginTable("LAYER", 2, static_cast<int>(layers.size()));
    for (const std::shared_ptr<DXFLayer>& layer : layers) {
        writeLayer(*m_engine, *m_file, DXFAdapter::makeLayer(layer), recordOf(layer->attributes()));
    }
    m_file->tableEnd();
}

bool DXFWriter::writeEntities_section() {
    if (!hasOpenFile()) {
        return false;
    }
    m_file->sectionEntities();
    for (const std::shared_ptr<DXFEntity>& entity : m_document.entities()) {
        if (!fillEntities(entity)) {
            return false;
        }
    }
    m_file->sectionEnd();
    return true;
}

bool DXFWriter::fillEntities(std::shared_ptr<DXFEntity> entity) {
    if (!entity || !EntityWriter::canWrite(entity->type())) {
        reportUnsupportedEntity();
        return false;
    }
    if (!hasOpenFile()) {
        return false;
    }
    if (!dxfeditor::visitEntity(*entity, EntityWriter(*m_engine, *m_file, entity))) {
        // It is not of the class that its type names: a fault of the program's own.
        std::terminate();
    }
    return m_file->succeeded();
}

void DXFWriter::writeVPORT_table() {
    if (hasOpenFile()) {
        m_engine->writeVPort(*m_file);
    }
}

void DXFWriter::writeAPPID_table() {
    if (!hasOpenFile()) {
        return;
    }
    const bool hasHandles = m_file->dxfVersion() >= firstVersionWithHandles;
    beginTable("APPID", 9, 1);
    m_file->dxfString(0, "APPID");
    if (hasHandles) {
        m_file->dxfHex(5, 18);
        m_file->dxfString(100, "AcDbSymbolTableRecord");
        m_file->dxfString(100, "AcDbRegAppTableRecord");
    }
    m_file->dxfString(2, "ACAD");
    m_file->dxfInt(70, 0);
    m_file->tableEnd();
}
