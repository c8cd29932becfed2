#include "tools/cloudconv/preview/PictureFormat.h"

#include "tools/cloudconv/Extension.h"
#include "tools/cloudconv/UsageError.h"

const std::map<std::string, PictureFormat>& pictureFormatNames() {
    static const std::map<std::string, PictureFormat> names = {{"png", PictureFormat::Png},
                                                               {"svg", PictureFormat::Svg},
                                                               {"pdf", PictureFormat::Pdf},
                                                               {"html", PictureFormat::Html}};
    return names;
}

PictureFormat pictureFormatOf(const std::string& path, std::optional<PictureFormat> asked) {
    const std::optional<PictureFormat> known =
        asked.has_value() ? asked : formatByExtension(path, pictureFormatNames());
    if (!known.has_value()) {
        throw UsageError('"' + path +
                         "\" ends in none of .png, .svg, .pdf and .html: add --to png, --to svg, "
                         "--to pdf or --to html");
    }
    return *known;
}
