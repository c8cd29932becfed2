#pragma once

#include "tools/cloudconv/Preview.h"
#include "tools/cloudconv/preview/PreviewReport.h"

#include <vector>

/// Makes the picture of a scan, or its page.
///
/// @param bytes  of a PLY file
/// @throws FileError when it is none, or there is nothing to draw
/// @throws UsageError when the options contradict each other
std::vector<unsigned char> previewOfScan(const std::vector<unsigned char>& bytes,
                                         const PreviewOptions& options, PictureFormat format,
                                         PreviewReport& report);
