#pragma once

#include "tools/cloudconv/FileFormat.h"
#include "tools/cloudconv/NearMisses.h"
#include "tools/cloudconv/preview/PictureFormat.h"
#include "tools/cloudconv/preview/PictureSize.h"

#include <optional>
#include <string>

/// What is to be drawn.
struct PreviewOptions {
    /// "-" is standard input and output.
    std::string input;
    std::string output;
    /// Formats that do not follow from the names.
    std::optional<FileFormat> from;
    std::optional<PictureFormat> to;
    PictureSize size;
    /// Open ends that are this near each other are marked as a gap.
    double distance = defaultNearness;
    /// Nothing on standard error but failures.
    bool quiet = false;
};

/// Draws a file. Says on standard error what the picture does not show.
///
/// @throws FileError when that fails, or there is nothing to draw; the output is then as it was
/// @throws UsageError when the options contradict each other
void preview(const PreviewOptions& options);
