#pragma once

#include <string>

namespace dxfeditor {

/// Logs that a drawing cannot be written to `path`: the message of DXFWriter::save, also for a
/// caller that finds it out before a writer is asked.
void reportUnopenableFile(const std::string& path);

} // namespace dxfeditor
