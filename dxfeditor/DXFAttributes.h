#pragma once

#include "dxfeditor/Export.h"

#include <memory>
#include <string>

/// Drawing attributes of an entity or a layer: an immutable record, shared by pointer between all
/// that were given it. To change an entity's attributes, give it a new record.
///
/// Copies of a record share the memory of all values but the handle.
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

    /// A record of its own with the same values but for the handle.
    std::shared_ptr<DXFAttributes> withHandle(int handle) const;

    /// Name of the layer that the entity belongs to.
    std::string layerName() const { return m_style->layerName; }
    /// Colour number (group 62).
    int color() const { return m_style->color; }
    /// 24-bit true colour (group 420).
    int color24() const { return m_style->color24; }
    /// Line weight.
    int width() const { return m_style->width; }
    /// Line type name.
    std::string lineType() const { return m_style->lineType; }
    /// Line type scale factor.
    double lineTypeScale() const { return m_style->lineTypeScale; }
    /// Entity handle.
    int handle() const { return m_handle; }
    /// True when the entity lives in paper space.
    bool inPaperSpace() const { return m_style->inPaperSpace; }

private:
    /// What many entities have in common.
    struct Style {
        std::string layerName;
        std::string lineType;
        double lineTypeScale;
        int color;
        int color24;
        int width;
        bool inPaperSpace;
    };

    std::shared_ptr<const Style> m_style;
    int m_handle;
};
