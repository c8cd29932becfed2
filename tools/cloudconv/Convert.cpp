#include "tools/cloudconv/Convert.h"

#include "tools/cloudconv/DrawingConversion.h"
#include "tools/cloudconv/PlainConversion.h"
#include "tools/cloudconv/ScanConversion.h"
#include "tools/cloudconv/UsageError.h"

namespace {

void checkPlain(const ConvertOptions& options, FileFormat to) {
    const std::string given =
        options.drawingOption.empty() ? options.scanOption : options.drawingOption;
    if (!given.empty()) {
        throw UsageError("--plain has rules of its own: " + given + " does not go with it");
    }
    if (to == FileFormat::Csv || to == FileFormat::Xyz || options.digits.has_value()) {
        throw UsageError("--plain writes .ply and .dxf, with digits of its own");
    }
}

void check(const ConvertOptions& options, FileFormat from, FileFormat to) {
    const std::string wrong = from == FileFormat::Ply ? options.drawingOption : options.scanOption;
    if (!wrong.empty()) {
        throw UsageError(wrong + (from == FileFormat::Ply ? " is for drawings" : " is for scans"));
    }
    if (to != FileFormat::Ply && options.ascii) {
        throw UsageError("--ascii is for PLY output");
    }
    if (to == FileFormat::Dxf && (options.intensity.has_value() || options.digits.has_value())) {
        throw UsageError("--intensity and --digits are not for DXF output");
    }
}

} // namespace

void convert(const ConvertOptions& options) {
    const FileFormat from = inputFormatOf(options.input, options.from);
    const FileFormat to = outputFormatOf(options.output, options.to);
    check(options, from, to);
    if (options.plain) {
        checkPlain(options, to);
        convertPlainly(options, from, to);
    } else if (from == FileFormat::Ply) {
        convertScan(options, to);
    } else {
        convertDrawing(options, to);
    }
}
