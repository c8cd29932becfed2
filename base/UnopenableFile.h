#pragma once

#include "universal_log_interface/universal_log_interface.h"

#include <string>

namespace base {

/// Logs that a drawing cannot be written to `path`: the message of DXFWriter::save, also for a
/// caller that finds it out before a writer is asked.
inline void reportUnopenableFile(const std::string& path) {
    p7::deliver(p7::level_info, __LINE__, "dxfeditor/DXFWriter", "save",
                "DXFWriter: Cannot open %s for writing.", path.c_str());
}

} // namespace base
