#pragma once

#include "dxfeditor/DXFAttributes.h"

#include <dxflib/dl_attributes.h>

#include <array>
#include <cstddef>
#include <memory>

namespace dxfeditor {

/// Makes the attribute records of a drawing that is read. Entities of equal attributes share one
/// record, and those that differ only in their handles share the rest: a record for each would take
/// more memory than most entities.
///
/// Remembers one record for each of some places that a hash of the attributes chooses, so that its
/// cost is bounded: a drawing of more styles than places gets some of its records twice.
class AttributeCache {
public:
    /// The record that DXFAdapter::makeAttributes gives, or one made before that is equal.
    std::shared_ptr<DXFAttributes> recordOf(const DL_Attributes& attributes);

private:
    static constexpr std::size_t placeCount = 256;

    /// The record given last: mostly the next entity has the same one.
    std::shared_ptr<DXFAttributes> m_last;
    std::array<std::shared_ptr<DXFAttributes>, placeCount> m_records;
};

} // namespace dxfeditor
