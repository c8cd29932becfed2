#pragma once

#include <pcl/PCLPointCloud2.h>

#include <string>
#include <vector>

/// A slow and plain writer of PLY, through streams, element by element: what the library's must
/// agree with. It reports nothing.
namespace reference {

/// The header; empty when a datatype is unknown.
std::string header(const pcl::PCLPointCloud2& cloud, bool binary);

/// The binary body.
std::vector<unsigned char> binaryBody(const pcl::PCLPointCloud2& cloud);

/// The ASCII body.
std::string asciiBody(const pcl::PCLPointCloud2& cloud);

/// How many elements of unknown datatype a body has: one warning each.
std::size_t unknownElements(const pcl::PCLPointCloud2& cloud);

} // namespace reference
