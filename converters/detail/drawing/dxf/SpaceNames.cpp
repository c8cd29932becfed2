#include "converters/detail/drawing/dxf/SpaceNames.h"

#include "converters/detail/drawing/dxf/EntityNames.h"

namespace converters::drawing {

bool isModelSpace(std::string_view block) {
    return beginsWith(block, "*MODEL_SPACE") || beginsWith(block, "$MODEL_SPACE");
}

bool isPaperSpace(std::string_view block) {
    return beginsWith(block, "*PAPER_SPACE") || beginsWith(block, "$PAPER_SPACE");
}

} // namespace converters::drawing
