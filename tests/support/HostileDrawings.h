#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// A kind of drawing that is made to be expensive to read.
struct HostileDrawing {
    const char* name;
    /// A text of about so many bytes. It has few points for its size, however large.
    std::string (*text)(std::size_t size);
};

const std::vector<HostileDrawing>& hostileDrawings();
