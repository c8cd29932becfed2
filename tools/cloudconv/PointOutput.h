#pragma once

#include "converters/ScanWriter.h"
#include "tools/cloudconv/FileFormat.h"

#include <array>

class OutputFile;

/// What is written for a format.
converters::ScanOutput pointOutputOf(FileFormat format, bool ascii);

/// Passes bytes on to a file, whose failures it throws.
converters::ByteSink sinkTo(OutputFile& file);

/// A field of a record as a number.
double valueOf(const unsigned char* record, const converters::ScanField& field);

/// The fields x, y and z.
std::array<converters::ScanField, 3> coordinatesOf(const converters::ScanLayout& layout);
