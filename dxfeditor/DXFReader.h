#pragma once

#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/Export.h"

#include <dxflib/dl_creationadapter.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

class DXFSpline;

namespace dxfeditor {
class AttributeCache;
}

/// Fills a document from a DXF text that dxflib parses.
///
/// Takes layers, line types, and the points, lines, circles, arcs, polylines (of both kinds) and
/// splines outside blocks, in the order of the text; consecutive points become one point vector.
/// Everything else of a drawing is passed over and does not reach the callbacks: a class derived
/// from this one does not see it either.
///
/// A broken text never does harm: what can be read of it is read. Lines of more than 1,023 bytes
/// are cut, and counts that the text cannot hold are bounded. dxflib reports an object when the
/// next one begins, so one that nothing follows, not even an end mark, is not read.
///
/// Numbers have a decimal point whatever the locale. If the global C++ locale is not the classic
/// one, load() makes the classic one global while it runs, for all threads.
///
/// A reader serves one load. It must outlive nothing but its calls; the document must outlive it.
class DXFEDITOR_EXPORT DXFReader : public DL_CreationAdapter {
public:
    /// Binds the document that is to be filled.
    explicit DXFReader(DXFDocument& document);
    ~DXFReader() override;
    DXFReader(const DXFReader&) = delete;
    DXFReader& operator=(const DXFReader&) = delete;

    /// Reads a DXF file, like its bytes up to the first NUL.
    /// @return false when the file cannot be opened or read (a directory, for example)
    /// @throws std::bad_alloc when the file or the drawing does not fit into memory; the document
    ///         keeps what was read so far
    bool load(const std::string& path);

    /// Reads the bytes of a DXF file, up to their first NUL.
    /// @return false only for a vector that holds no storage; a text that is not DXF adds nothing
    ///         and gives true
    /// @throws std::bad_alloc as above
    bool load(std::vector<char> bytes);

    /// The same for bytes in the caller's memory, which are not copied.
    /// @return false when there are none
    bool load(const char* bytes, std::size_t size);

    // What dxflib reports; also callable directly.

    /// Adds a layer, with the attributes that dxflib currently reports; inside blocks too.
    void addLayer(const DL_LayerData& data) override;
    /// Adds a line type.
    void addLinetype(const DL_LinetypeData& data) override;
    /// A block begins: until it ends, no entity goes into the document.
    void addBlock(const DL_BlockData& data) override;
    /// A block ends.
    void endBlock() override;
    /// Makes a point current, or a vector of points when the current entity is a point or a vector
    /// already. The point that becomes part of a new vector is taken out of the document.
    void addPoint(const DL_PointData& data) override;
    /// Makes a line current.
    void addLine(const DL_LineData& data) override;
    /// Makes a circle current.
    void addCircle(const DL_CircleData& data) override;
    /// Makes an arc current.
    void addArc(const DL_ArcData& data) override;
    /// Makes a polyline without vertices current.
    void addPolyline(const DL_PolylineData& data) override;
    /// Appends a vertex, if the current entity is a polyline.
    void addVertex(const DL_VertexData& data) override;
    /// Makes a spline without points and knots current, but not inside a block: only the spline
    /// callbacks look at that, the others leave it to endEntity() to drop what they made.
    void addSpline(const DL_SplineData& data) override;
    /// Appends to the current entity, if it is a spline and not inside a block.
    void addControlPoint(const DL_ControlPointData& data) override;
    /// Appends to the current entity, if it is a spline and not inside a block.
    void addKnot(const DL_KnotData& data) override;
    /// Appends to the current entity, if it is a spline and not inside a block.
    void addFitPoint(const DL_FitPointData& data) override;

    /// Gives the current entity its attributes and adds it to the document; drops it inside a
    /// block. It stays current after it was added, so later points and vertices still reach it, and
    /// a second call adds it again.
    void endEntity() override;

    /// dxflib's mark behind every object, of any kind. It does not call endEntity() for points,
    /// lines, circles and arcs: such an entity ends here, unless endEntity() was called for it or
    /// it is a point vector that the document holds already. Inside a block nothing stays current,
    /// so that a block's points never mix with those before it.
    void endSection() override;

    /// Gives the entity the attributes that dxflib currently reports. Entities of equal attributes
    /// may share one record.
    void importEntity(std::shared_ptr<DXFEntity> entity);

private:
    /// The current entity, if it is a spline that may grow.
    DXFEDITOR_HIDDEN DXFSpline* currentSpline() const;
    DXFEDITOR_HIDDEN void shrinkCurrent();
    /// Makes an entity current that endSection() has to end.
    DXFEDITOR_HIDDEN void startSimple(std::shared_ptr<DXFEntity> entity);
    /// Makes an entity current that dxflib ends itself.
    DXFEDITOR_HIDDEN void startComposite(std::shared_ptr<DXFEntity> entity);

    DXFDocument& m_document;
    std::unique_ptr<dxfeditor::AttributeCache> m_records;
    std::shared_ptr<DXFEntity> m_current;
    bool m_inBlock = false;
    /// The current entity waits for endSection().
    bool m_unended = false;
};
