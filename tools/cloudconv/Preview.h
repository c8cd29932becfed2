#pragma once

#include "converters/DrawingPath.h"
#include "converters/check/NearMisses.h"
#include "tools/cloudconv/FileFormat.h"
#include "tools/cloudconv/preview/CloudView.h"
#include "tools/cloudconv/preview/DrawingStyle.h"
#include "tools/cloudconv/preview/PictureFormat.h"
#include "tools/cloudconv/preview/PictureSize.h"

#include <cstddef>
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
    /// The walk of fromDxf() in place of the path of a drawing, and what fromPly() takes of a scan.
    bool plain = false;

    /// Of drawings: open ends that are this near each other are marked as a gap.
    double distance = converters::defaultNearness;
    converters::PathOptions path;
    /// An option of paths that was given; else empty.
    std::string pathOption;
    DrawingMarks marks;

    /// Of scans.
    /// The property that is the intensity; empty for the usual ones.
    std::string intensity;
    std::optional<CloudView> view;
    std::optional<CloudColour> colour;
    /// Points that a page shows at most.
    std::optional<std::size_t> pagePoints;

    /// The output may be the input.
    bool force = false;
    /// Nothing on standard error but failures.
    bool quiet = false;
};

/// Draws a file, or makes a page of it. Says on standard error what that does not show.
///
/// @throws FileError when that fails, or there is nothing to draw; the output is then as it was
/// @throws UsageError when the options contradict each other
void preview(const PreviewOptions& options);
