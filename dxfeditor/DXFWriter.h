#pragma once

#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/Export.h"

#include <memory>
#include <string>

class DL_Dxf;

namespace dxfeditor {
class DxfFileWriter;
}

/// Writes a document as a DXF file of release R12: a header with the version, the tables LTYPE and
/// LAYER, an empty BLOCKS section and the ENTITIES section. Points, point vectors and polylines
/// can be written; dxflib spells each entity.
///
/// A writer may save more than once. After a save that succeeded its file is complete and closed.
/// After one that met an entity it cannot write, the file ends behind the entities before it,
/// without ENDSEC and EOF, and stays open until the next save or the writer's end; the operations
/// below save() then go on in that file, and what they write reaches it at the latest when it is
/// closed. Without an open file they write nothing, and those with a result return false.
///
/// Output does not depend on the C or C++ locale. Not to be used from two threads at once.
class DXFEDITOR_EXPORT DXFWriter {
public:
    /// @param document  the drawing to write; it must outlive the writer
    explicit DXFWriter(const DXFDocument& document);
    ~DXFWriter();
    DXFWriter(const DXFWriter&) = delete;
    DXFWriter& operator=(const DXFWriter&) = delete;

    /// Writes the whole drawing into the file at `path`, which is created or emptied first.
    ///
    /// @return true when the file is complete. False when it cannot be opened (a message is
    ///         logged), when an entity cannot be written (see fillEntities) or when any byte could
    ///         not be written; in the last case the file is closed.
    bool save(const std::string& path);

    /// Writes the HEADER section, which holds the version alone.
    void writeHeader();

    /// Writes the LTYPE table. It holds the line type CONTINUOUS and nothing else, whatever line
    /// types the document has.
    void writeLineType_table();

    /// Writes the LAYER table: every layer of the document, behind a layer "0" when the document
    /// has none. Layers without attributes get those of that layer "0"; empty pointers are left
    /// out. A layer without a name counts among the table's entries, but dxflib writes none.
    ///
    /// When layer "0" is added, the document's entities that have no attributes are given those of
    /// layer "0", for good: they all share one record afterwards. The document gets no new layer.
    void writeLAYER_table();

    /// Writes the ENTITIES section.
    /// @return false when an entity was not written: the section then ends there, unclosed
    bool writeEntities_section();

    /// Writes one entity; a point vector becomes one POINT for each of its points.
    ///
    /// An entity without attributes is written with those of the layer "0" that writeLAYER_table
    /// adds.
    /// @return false when the entity is empty or neither point, point vector nor polyline, which
    ///         is logged, and when the file could not take all that was written so far
    bool fillEntities(std::shared_ptr<DXFEntity> entity);

    /// Writes dxflib's VPORT table. A saved file has none.
    void writeVPORT_table();

    /// Writes an APPID table with the application ACAD. A saved file has none.
    void writeAPPID_table();

private:
    DXFEDITOR_HIDDEN bool hasOpenFile() const;
    DXFEDITOR_HIDDEN void beginTable(const char* name, int handle, int entries);

    std::unique_ptr<DL_Dxf> m_engine;
    std::unique_ptr<dxfeditor::DxfFileWriter> m_file;
    const DXFDocument& m_document;
};
