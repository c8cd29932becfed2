#pragma once

#include "converters/Scan.h"
#include "tools/cloudconv/preview/PreviewScan.h"

#include <string>
#include <vector>

class Progress;

/// Reads what there is to see of a scan: positions, intensities and colours. Coordinates too large
/// for floats are shifted.
///
/// @param name       the file's, for messages
/// @param intensity  the property to take as intensity; empty for the usual ones
/// @throws FileError with the reader's reason
PreviewScan previewScanOf(const std::string& name, const std::vector<unsigned char>& bytes,
                          const std::string& intensity, Progress& progress);
