#include "tools/cloudconv/Convert.h"

#include "tools/cloudconv/InputFile.h"
#include "tools/cloudconv/OutputFile.h"
#include "tools/cloudconv/PlyFile.h"
#include "tools/cloudconv/StandardError.h"

namespace {

void writeOutputFile(const std::string& path, const std::vector<unsigned char>& bytes) {
    OutputFile file(path);
    file.write(bytes.data(), bytes.size());
    file.commit();
}

void tellWhatIsMissing(const ConvertOptions& options, const PlyContents& contents) {
    const std::string note = options.input + ": note: ";
    if (contents.cloud.points.empty()) {
        printToStandardError(note + "the file declares no points, nor does " + options.output);
        return;
    }
    if (!contents.hasIntensity) {
        printToStandardError(note + "no property \"intensity\" of type float, written as 0");
    }
    if (!contents.droppedProperties.empty()) {
        std::string names;
        for (const std::string& name : contents.droppedProperties) {
            names += (names.empty() ? "" : ", ") + name;
        }
        printToStandardError(note + "dropped properties: " + names);
    }
}

} // namespace

void convert(const ConvertOptions& options) {
    const PlyContents contents = readPly(options.input, readInputFile(options.input));
    writeOutputFile(options.output, writePly(options.output, contents.cloud, options.ascii));
    tellWhatIsMissing(options, contents);
}
