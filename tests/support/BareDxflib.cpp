#include "tests/support/BareDxflib.h"

#include <dxflib/dl_dxf.h>

#include <sstream>

void parseWithDxflib(const std::string& text, DL_CreationInterface& reader) {
    std::stringstream stream(text);
    DL_Dxf().in(stream, &reader);
}
