#include "converters/detail/ply/PlyRecords.h"

#include "converters/detail/ply/OutputMemory.h"

#include <algorithm>
#include <cstring>

namespace converters::detail {
namespace {

/// Bytes that go from each point to its record as they are.
struct Piece {
    /// First byte in the point.
    std::size_t position;
    /// First byte in the record.
    std::size_t place;
    std::size_t size;
};

std::vector<Piece> piecesOf(const std::vector<PlyColumn>& columns) {
    std::vector<Piece> pieces;
    std::size_t place = 0;
    for (const PlyColumn& column : columns) {
        if (column.isKnown() && column.elements > 0) {
            pieces.push_back({column.position(column.elements - 1), place, column.elementSize});
        }
        place += column.elementSize;
    }
    return pieces;
}

/// The same pieces, neighbours joined.
std::vector<Piece> joined(const std::vector<Piece>& pieces) {
    std::vector<Piece> result;
    for (const Piece& piece : pieces) {
        if (!result.empty() && result.back().position + result.back().size == piece.position &&
            result.back().place + result.back().size == piece.place) {
            result.back().size += piece.size;
        } else {
            result.push_back(piece);
        }
    }
    return result;
}

/// A number of consecutive points and the records they go to.
struct Block {
    std::size_t first;
    std::size_t last;
    unsigned char* records;
    std::size_t recordSize;
};

/// Copies a piece of each point in a block. A size known at compile time, if not 0, makes each copy
/// a move or two.
template <std::size_t fixedSize>
void copyPiece(const Piece& piece, const PointBytes& points, const Block& block) {
    const std::size_t size = fixedSize != 0 ? fixedSize : piece.size;
    const std::size_t inside = points.countWithElement(piece.position, size);
    unsigned char* record = block.records + piece.place;
    std::size_t i = block.first;
    for (const std::size_t last = std::min(block.last, inside); i < last; ++i) {
        std::memcpy(record, points.data + i * points.stride + piece.position, size);
        record += block.recordSize;
    }
    for (; i < block.last; ++i) {
        std::memset(record, 0, size);
        record += block.recordSize;
    }
}

void copyPiece(const Piece& piece, const PointBytes& points, const Block& block) {
    switch (piece.size) {
    case 1:
        return copyPiece<1>(piece, points, block);
    case 2:
        return copyPiece<2>(piece, points, block);
    case 4:
        return copyPiece<4>(piece, points, block);
    case 8:
        return copyPiece<8>(piece, points, block);
    case 12:
        return copyPiece<12>(piece, points, block);
    case 16:
        return copyPiece<16>(piece, points, block);
    default:
        return copyPiece<0>(piece, points, block);
    }
}

} // namespace

std::size_t recordSize(const std::vector<PlyColumn>& columns) {
    std::size_t size = 0;
    for (const PlyColumn& column : columns) {
        size += column.elementSize;
    }
    return size;
}

void appendRecords(const std::vector<PlyColumn>& columns, const PointBytes& points,
                   std::vector<unsigned char>& out) {
    const std::vector<Piece> pieces = piecesOf(columns);
    const std::vector<Piece> joinedPieces = joined(pieces);
    // Where every piece of a point is inside the bytes, joining changes nothing.
    std::size_t complete = points.count;
    for (const Piece& piece : pieces) {
        complete = std::min(complete, points.countWithElement(piece.position, piece.size));
    }

    // In blocks that stay in the cache: the output is written once, and not filled before.
    constexpr std::size_t pointsPerBlock = 256;
    const std::size_t size = recordSize(columns);
    std::vector<unsigned char> records(size * std::min(pointsPerBlock, points.count));
    reserveOutput(out, out.size() + size * points.count);
    for (std::size_t first = 0; first < points.count; first += pointsPerBlock) {
        const std::size_t last = std::min(first + pointsPerBlock, points.count);
        for (const Piece& piece : last <= complete ? joinedPieces : pieces) {
            copyPiece(piece, points, {first, last, records.data(), size});
        }
        out.insert(out.end(), records.data(), records.data() + (last - first) * size);
    }
}

} // namespace converters::detail
