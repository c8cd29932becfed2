#include "converters/detail/drawing/dxf/SpaceNames.h"

#include <algorithm>

namespace converters::drawing {

bool beginsWith(std::string_view name, std::string_view start) {
    return name.size() >= start.size() &&
           std::equal(start.begin(), start.end(), name.begin(), [](char expected, char c) {
               return expected == (c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
           });
}

bool isModelSpace(std::string_view block) {
    return beginsWith(block, "*model_space") || beginsWith(block, "$model_space");
}

bool isPaperSpace(std::string_view block) {
    return beginsWith(block, "*paper_space") || beginsWith(block, "$paper_space");
}

} // namespace converters::drawing
