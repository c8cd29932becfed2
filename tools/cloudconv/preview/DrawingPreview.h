#pragma once

#include "tools/cloudconv/Preview.h"
#include "tools/cloudconv/preview/PreviewReport.h"

#include <vector>

/// Makes the picture of a drawing, or its page.
///
/// @param bytes  of a DXF file
/// @throws FileError when it is none, or there is nothing to draw
/// @throws UsageError when the options contradict each other
std::vector<unsigned char> previewOfDrawing(const std::vector<unsigned char>& bytes,
                                            const PreviewOptions& options, PictureFormat format,
                                            PreviewReport& report);
