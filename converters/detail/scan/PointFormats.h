#pragma once

#include "converters/ScanWriter.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace converters::scan {

/// A format that points are written in: gives its pieces as bytes.
class PointFormat {
public:
    virtual ~PointFormat() = default;

    /// Whether points of the layout can be written.
    virtual bool isPossible() const { return true; }

    /// Appends what comes before `count` points.
    virtual void begin(std::uint64_t count, std::string& bytes) = 0;

    /// Appends points.
    virtual void add(const unsigned char* records, std::size_t count, std::string& bytes) = 0;

    /// Appends what comes behind the points.
    virtual void end(std::string&) {}
};

std::unique_ptr<PointFormat> makePointFormat(ScanOutput output, const ScanLayout& layout,
                                             const ScanWriteOptions& options);

} // namespace converters::scan
