#include "tools/cloudconv/preview/PictureFormat.h"

#include "tools/cloudconv/UsageError.h"

#include <strings.h>

const std::map<std::string, PictureFormat>& pictureFormatNames() {
    static const std::map<std::string, PictureFormat> names = {
        {"png", PictureFormat::Png}, {"svg", PictureFormat::Svg}, {"pdf", PictureFormat::Pdf}};
    return names;
}

PictureFormat pictureFormatOf(const std::string& path, std::optional<PictureFormat> asked) {
    if (asked.has_value()) {
        return *asked;
    }
    for (const auto& [name, format] : pictureFormatNames()) {
        const std::string extension = '.' + name;
        if (path.size() > extension.size() &&
            strcasecmp(path.c_str() + path.size() - extension.size(), extension.c_str()) == 0) {
            return format;
        }
    }
    throw UsageError("a picture ends in .png, .svg or .pdf: rename \"" + path +
                     "\" or add --to png, --to svg or --to pdf");
}
