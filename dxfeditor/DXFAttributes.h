#pragma once

#include "dxfeditor/Export.h"

#include <string>

/// Drawing attributes of an entity or a layer: an immutable record, shared by pointer between all
/// that were given it. To change an entity's attributes, give it a new record.
class DXFEDITOR_EXPORT DXFAttributes {
public:
    /// @param layerName      name of the layer that the entity belongs to
    /// @param color          colour number (group 62)
    /// @param color24        24-bit true colour (group 420)
    /// @param width          line weight
    /// @param lineType       line type name
    /// @param lineTypeScale  line type scale factor
    /// @param handle         entity handle
    /// @param inPaperSpace   true when the entity lives in paper space
    DXFAttributes(const std::string& layerName, int color, int color24, int width,
                  const std::string& lineType, double lineTypeScale, int handle, bool inPaperSpace);
    /// A record of its own with the same values.
    DXFAttributes(const DXFAttributes&) = default;
    /// Not assignable: others may share the record.
    DXFAttributes& operator=(const DXFAttributes&) = delete;

    /// Name of the layer that the entity belongs to.
    std::string layerName() const { return m_layerName; }
    /// Colour number (group 62).
    int color() const { return m_color; }
    /// 24-bit true colour (group 420).
    int color24() const { return m_color24; }
    /// Line weight.
    int width() const { return m_width; }
    /// Line type name.
    std::string lineType() const { return m_lineType; }
    /// Line type scale factor.
    double lineTypeScale() const { return m_lineTypeScale; }
    /// Entity handle.
    int handle() const { return m_handle; }
    /// True when the entity lives in paper space.
    bool inPaperSpace() const { return m_inPaperSpace; }

private:
    std::string m_layerName;
    int m_color;
    int m_color24;
    int m_width;
    std::string m_lineType;
    double m_lineTypeScale;
    int m_handle;
    bool m_inPaperSpace;
};
