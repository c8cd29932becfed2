#pragma once

#include "converters/check/Finding.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

/// What a DXF text says of an entity that the walk of fromDxf() does not heed.
struct FileEntity {
    converters::FoundEntity named;
    /// The first point of the entity, group 10 and 20.
    double x = 0.0;
    double y = 0.0;
    /// Group 70.
    int flags = 0;
    std::array<double, 3> extrusion = {0.0, 0.0, 1.0};
    /// Invisible by itself.
    bool invisible = false;
    bool inPaperSpace = false;
    bool onHiddenLayer = false;
    /// Of polylines: vertices, and how many edges are arcs.
    std::size_t vertices = 0;
    std::size_t bulges = 0;
    /// Of splines.
    std::size_t controlPoints = 0;
    std::size_t fitPoints = 0;
};

/// The entities of a DXF text, in its order.
struct FileEntities {
    /// Those that the walk takes: one for each of the drawing model, POINTs that follow one another
    /// together.
    std::vector<FileEntity> walked;
    /// Geometry that it does not take: blocks that are inserted, and kinds that it does not know.
    std::vector<FileEntity> passedOver;
};

/// Reads the entities of a DXF text, as far as the library reads it.
FileEntities fileEntitiesOf(std::string_view text);
