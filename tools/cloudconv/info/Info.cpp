#include "tools/cloudconv/info/Info.h"

#include "tools/cloudconv/UsageError.h"
#include "tools/cloudconv/info/PathInfo.h"
#include "tools/cloudconv/info/PlainInfo.h"
#include "tools/cloudconv/info/ScanInfo.h"

#include <nlohmann/json.hpp>

nlohmann::ordered_json describeFile(const InfoOptions& options) {
    const FileFormat format = inputFormatOf(options.input, options.from);
    if (options.plain && !options.pathOption.empty()) {
        throw UsageError("--plain has rules of its own: " + options.pathOption +
                         " does not go with it");
    }
    if (format == FileFormat::Ply && !options.pathOption.empty()) {
        throw UsageError(options.pathOption + " is for drawings");
    }
    if (options.plain) {
        return describePlainly(options, format);
    }
    return format == FileFormat::Ply ? describeScan(options) : describePath(options);
}
