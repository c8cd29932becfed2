#include "tools/cloudconv/DxfFile.h"

#include "converters/Converters.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFReader.h"
#include "dxfeditor/text/DxfGroups.h"
#include "tools/cloudconv/DxfText.h"
#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/Interrupt.h"
#include "tools/cloudconv/Progress.h"

#include <unistd.h>

#include <filesystem>
#include <string_view>

namespace {

/// A reader that tells how many objects it has seen.
class ObservedReader : public DXFReader {
public:
    ObservedReader(DXFDocument& document, Progress& progress)
        : DXFReader(document), m_progress(progress) {}

    void endSection() override {
        m_progress.reached(++m_objects);
        DXFReader::endSection();
    }

private:
    Progress& m_progress;
    std::size_t m_objects = 0;
};

/// How many objects an ObservedReader of this text sees, as far as that is to be shown; else 0.
std::size_t objectsIn(std::string_view text, const Progress& progress) {
    std::size_t objects = 0;
    dxfeditor::DxfGroup group;
    for (dxfeditor::DxfGroups groups(text); progress.isShown() && groups.next(group);) {
        objects += group.beginsObject() ? 1 : 0;
    }
    return objects;
}

/// Where toDxf writes its transient drawing.
std::string transientDrawing() {
    return converters::tmpDxfPath / ("tmp" + std::to_string(getpid()) + ".dxf");
}

} // namespace

DxfContents readDxf(const std::string& path, const std::vector<unsigned char>& bytes,
                    Progress& progress) {
    const auto* const text = reinterpret_cast<const char*>(bytes.data());
    DxfContents contents;
    contents.document = std::make_shared<DXFDocument>();
    progress.begin("reading objects of " + path,
                   objectsIn(std::string_view(text, bytes.size()), progress));
    ObservedReader(*contents.document, progress).load(text, bytes.size());
    contents.entityCount = contents.document->entities().size();
    if (contents.entityCount == 0 && contents.document->layers().empty()) {
        const std::string reason = whyNotDxfText(std::string_view(text, bytes.size()));
        if (!reason.empty()) {
            throw FileError(path, reason);
        }
    }
    const auto walked = progress.beginParts("walking " + path);
    contents.cutOff = whatIsCutOff(std::string_view(text, bytes.size()));
    contents.document->setup();
    contents.points = contents.document->getPoints(contents.contours, contents.pieces, walked);
    return contents;
}

std::vector<unsigned char> writeDxf(const std::string& path,
                                    const std::vector<cv::Point3_<double>>& points) {
    const RemovedWhenInterrupted transient(transientDrawing());
    std::vector<unsigned char> bytes;
    try {
        std::string reason;
        if (!converters::toDxf(points, bytes, reason)) {
            throw FileError(path, reason.empty() ? "the transient drawing in " +
                                                       converters::tmpDxfPath.string() +
                                                       " could not be written"
                                                 : reason);
        }
    } catch (const std::filesystem::filesystem_error& error) {
        throw FileError(error.path1(), error.code().message());
    }
    return bytes;
}
