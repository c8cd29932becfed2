#include "tools/cloudconv/Preview.h"

#include "tools/cloudconv/InputFile.h"
#include "tools/cloudconv/OutputFile.h"
#include "tools/cloudconv/preview/DrawingPreview.h"
#include "tools/cloudconv/preview/ScanPreview.h"

namespace {

/// The file's name without its folder.
std::string titleOf(const std::string& path) {
    return asPrintableUtf8(path == "-" ? inputName(path) : path.substr(path.rfind('/') + 1));
}

} // namespace

void preview(const PreviewOptions& options) {
    const FileFormat from = inputFormatOf(options.input, options.from);
    const PictureFormat to = pictureFormatOf(options.output, options.to);
    Progress progress(options.quiet);
    PreviewReport report = {inputName(options.input), titleOf(options.input), progress,
                            Notes(inputName(options.input))};
    const InputFile input(options.input);
    checkReplacement(input, options.output, options.force);
    const auto draw = from == FileFormat::Ply ? previewOfScan : previewOfDrawing;
    writeOutputFile(options.output, draw(readInputFile(input, progress), options, to, report),
                    progress);
    progress.end();
    if (!options.quiet) {
        report.notes.print();
    }
}
