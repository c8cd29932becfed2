#pragma once

#include "tools/cloudconv/Notes.h"
#include "tools/cloudconv/Progress.h"
#include "tools/cloudconv/Wording.h"

#include <cstddef>
#include <string>

/// What one previewed file is called, and what there is to say about it.
struct PreviewReport {
    /// For messages.
    std::string input;
    /// In the picture: printable UTF-8.
    std::string title;
    Progress& progress;
    Notes notes;

    /// Notes points that cannot be shown.
    void addLeftOut(std::size_t count) {
        if (count > 0) {
            notes.add(leftOutText(count) + " (nan, infinite or too far away)");
        }
    }
};
