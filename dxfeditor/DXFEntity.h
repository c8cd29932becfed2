#pragma once

#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/Export.h"

#include <memory>

/// The codes that DXFEntity::type() returns. Point extraction and the writer dispatch on them.
namespace DXFEntityType {
constexpr int Polyline = 0;    ///< DXFPolyline
constexpr int Point = 1;       ///< DXFPoint
constexpr int PointVector = 2; ///< DXFPointVector
constexpr int Circle = 3;      ///< DXFCircle
constexpr int Arc = 4;         ///< DXFArc
constexpr int Line = 5;        ///< DXFLine
constexpr int Spline = 6;      ///< DXFSpline
} // namespace DXFEntityType

/// A drawable object of a drawing.
///
/// Drawings and callers share entities by std::shared_ptr. An entity must not be changed while
/// another thread uses it.
class DXFEDITOR_EXPORT DXFEntity {
public:
    /// An entity without attributes, of line width 0.
    DXFEntity() = default;
    /// Lets go of the attributes.
    virtual ~DXFEntity();

    /// The entity's kind, one of DXFEntityType.
    virtual int type() const = 0;

    /// Prepares what is derived from the entity's data. DXFDocument::setup calls it once.
    virtual void setup() = 0;

    /// A copy of the entity, owned by the caller, that shares this entity's attributes unless the
    /// class says otherwise.
    virtual DXFEntity* clone() const = 0;

    /// The shared attribute record, or an empty pointer.
    std::shared_ptr<DXFAttributes> attributes() const { return m_attributes; }

    /// Shares `attributes`, which may be empty, in place of the record held so far.
    void setAttributes(std::shared_ptr<DXFAttributes> attributes);

    /// The entity's own line width, apart from the width in its attributes.
    int lineWidth() const { return m_lineWidth; }
    /// Stores a line width.
    void setLineWidth(int width) { m_lineWidth = width; }

protected:
    /// Takes over the line width and shares the attributes.
    DXFEntity(const DXFEntity&) = default;
    /// Takes over the line width and shares the attributes.
    DXFEntity& operator=(const DXFEntity&) = default;

private:
    int m_lineWidth = 0;
    std::shared_ptr<DXFAttributes> m_attributes;
};
