#pragma once

#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/Export.h"

#include <memory>
#include <string>

/// A layer of a drawing, known by its name.
class DXFEDITOR_EXPORT DXFLayer {
public:
    /// A layer without attributes.
    ///
    /// @param name   name by which drawings find the layer
    /// @param flags  layer flags (group 70)
    DXFLayer(const std::string& name, int flags);
    /// A layer of the same name and flags that shares the attributes.
    DXFLayer(const DXFLayer&) = default;
    /// Not assignable: a layer keeps its name, by which drawings find it.
    DXFLayer& operator=(const DXFLayer&) = delete;

    /// The layer's name; drawings tell case apart.
    std::string name() const { return m_name; }
    /// Layer flags (group 70), as given.
    int flags() const { return m_flags; }

    /// True when the flags are exactly 1 (frozen). The whole word is compared: a layer that carries
    /// any further flag reports false.
    bool isFrozen() const { return m_flags == 1; }
    /// True when the flags are exactly 4 (locked); compared as isFrozen() does.
    bool isLocked() const { return m_flags == 4; }

    /// The shared record of colour, line type and width, or an empty pointer.
    std::shared_ptr<DXFAttributes> attributes() const { return m_attributes; }
    /// Shares `attributes`, which may be empty, in place of the record held so far.
    void setAttributes(std::shared_ptr<DXFAttributes> attributes);

private:
    std::string m_name;
    int m_flags;
    std::shared_ptr<DXFAttributes> m_attributes;
};
