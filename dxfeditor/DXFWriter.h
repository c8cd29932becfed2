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
/// can be written. dxflib says which groups make up an entity; their numbers are spelled here,
/// since dxflib's own way overruns a buffer and depends on the locale.
///
/// A writer may save more than once. After a save that succeeded its file is complete and closed.
/// After one that met an entity it cannot write, the file ends behind the entities before it,
/// without ENDSEC and EOF, and stays open until the next save or the writer's end; the operations
/// below save() then go on in that file, and what they write reaches it at the latest when it is
/// closed. Without an open file they write nothing, and those with a result return false.
///
/// Saving changes the document when entities lack attributes (see writeLAYER_table), although the
/// writer takes it as constant: nobody else may use the document meanwhile.
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
    /// It may change the document: two threads must not save the same one at once, nor one save it
    /// while another reads it, not even with writers of their own.
    ///
    /// @return true when the file is complete. False when it cannot be opened (a message is
    ///         logged, which whyNotOpened() tells), when an entity cannot be written (see
    ///         fillEntities) or when any byte could not be written; in the last case the file is
    ///         closed.
    /// @throws what the logging library throws
    bool save(const std::string& path);

    /// Writes the whole drawing into a file that is open already, from where it stands, and leaves
    /// it open.
    ///
    /// For a caller that must be sure which file it writes, whatever is put at its path.
    ///
    /// @param file  descriptor to write to; it stays the caller's
    /// @param path  what the message calls the file
    /// @return as save() does; false, after the same message, when `file` is no open descriptor or
    ///         the process may have no further one
    /// @throws what the logging library throws
    bool saveTo(int file, const std::string& path);

    /// Why the last save could not open its file, as the log says it; empty when it could.
    const std::string& whyNotOpened() const { return m_whyNotOpened; }

    /// Writes the HEADER section, which holds the version alone.
    void writeHeader();

    /// Writes the LTYPE table. It holds the line type CONTINUOUS and nothing else, whatever line
    /// types the document has.
    void writeLineType_table();

    /// Writes the LAYER table: every layer of the document, behind a layer "0" when the document
    /// has none. Layers without attributes get those of that layer "0"; empty pointers are left
    /// out. A layer without a name counts among the table's entries, but is not written; a colour
    /// above 255 is written as 7.
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
    /// @throws what the logging library throws
    bool fillEntities(std::shared_ptr<DXFEntity> entity);

    /// Writes dxflib's VPORT table. A saved file has none.
    void writeVPORT_table();

    /// Writes an APPID table with the application ACAD. A saved file has none.
    void writeAPPID_table();

private:
    DXFEDITOR_HIDDEN bool saveInto(const std::string& path);
    DXFEDITOR_HIDDEN bool hasOpenFile() const;
    DXFEDITOR_HIDDEN void beginTable(const char* name, int handle, int entries);

    std::unique_ptr<DL_Dxf> m_engine;
    std::unique_ptr<dxfeditor::DxfFileWriter> m_file;
    std::string m_whyNotOpened;
    const DXFDocument& m_document;
};
