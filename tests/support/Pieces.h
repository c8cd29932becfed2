#pragma once

#include "converters/ByteSource.h"

#include <algorithm>
#include <cstring>
#include <string_view>

/// Gives the bytes of a file in pieces of at most `piece` bytes. The file has to outlive it.
inline converters::ByteSource piecesOf(std::string_view file, std::size_t piece) {
    return [file, piece, position = std::size_t{0}](void* bytes, std::size_t room) mutable {
        const std::size_t count = std::min({piece, room, file.size() - position});
        if (count != 0) {
            std::memcpy(bytes, file.data() + position, count);
        }
        position += count;
        return count;
    };
}
