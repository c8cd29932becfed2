#include "tools/cloudconv/PlyFile.h"

#include "converters/Converters.h"
#include "converters/PlySerializerDeserializer.h"
#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/PlyInventory.h"

#include <pcl/PCLPointCloud2.h>
#include <pcl/console/print.h>
#include <pcl/conversions.h>

#include <algorithm>
#include <array>

namespace {

/// Whether this is a PLY file whose first vertex element has none.
bool declaresNoVertices(const std::vector<unsigned char>& bytes) {
    const PlyInventory inventory =
        plyInventoryOf({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    const auto vertices =
        std::find_if(inventory.elements.begin(), inventory.elements.end(),
                     [](const PlyElementLine& element) { return element.name == "vertex"; });
    return inventory.hasEnd && vertices != inventory.elements.end() && vertices->number() == 0U;
}

bool isFloat(const std::vector<pcl::PCLPointField>& fields, const std::string& name) {
    return std::any_of(fields.begin(), fields.end(), [&](const pcl::PCLPointField& field) {
        return field.name == name && field.datatype == pcl::PCLPointField::FLOAT32;
    });
}

bool readInto(PLYDeserializer& reader, const std::vector<unsigned char>& bytes,
              pcl::PointCloud<pcl::PointXYZI>& cloud, const std::function<void(double)>& progress) {
    // Its warnings of missing fields say less than ours.
    pcl::console::setVerbosityLevel(pcl::console::L_ERROR);
    return reader.DeserializePlyT(bytes, cloud, progress);
}

void checkFields(const std::string& path, const std::vector<pcl::PCLPointField>& fields,
                 PlyContents& contents) {
    for (const char* coordinate : {"x", "y", "z"}) {
        if (!isFloat(fields, coordinate)) {
            throw FileError(path, std::string("no property \"") + coordinate + "\" of type float");
        }
    }
    contents.hasIntensity = isFloat(fields, "intensity");
    for (const pcl::PCLPointField& field : fields) {
        constexpr std::array<const char*, 4> kept = {"x", "y", "z", "intensity"};
        if (std::find(kept.begin(), kept.end(), field.name) == kept.end()) {
            contents.droppedProperties.push_back(field.name);
        }
    }
}

} // namespace

PlyContents readPly(const std::string& path, const std::vector<unsigned char>& bytes,
                    const std::function<void(double)>& progress) {
    if (bytes.empty()) {
        throw FileError(path, "the file is empty");
    }
    PlyContents contents;
    PLYDeserializer reader;
    try {
        if (!readInto(reader, bytes, contents.cloud, progress)) {
            throw FileError(path, reader.refusal().messages.front());
        }
    } catch (const std::logic_error&) {
        throw FileError(path, "the value of an obj_info line is not a number that fits");
    }
    if (!reader.isEmptySceneInTeach()) {
        checkFields(path, reader.cloud->fields, contents);
    } else if (!declaresNoVertices(bytes)) {
        throw FileError(path, "not a PLY file with vertices");
    }
    return contents;
}

std::vector<unsigned char> writePly(const pcl::PointCloud<pcl::PointXYZI>& cloud, bool ascii) {
    if (cloud.points.empty()) {
        // The header that the library gives for such a cloud has neither format nor properties:
        // other programs refuse it.
        pcl::PCLPointCloud2 empty;
        pcl::toPCLPointCloud2(pcl::PointCloud<pcl::PointXYZI>(), empty);
        const std::string header = PLYSerializer().GenerateHeader(empty, !ascii);
        return {header.begin(), header.end()};
    }
    std::vector<unsigned char> bytes;
    // Only a cloud without points is refused.
    static_cast<void>(ascii ? converters::toPlyAscii(cloud, bytes)
                            : converters::toPlyBinary(cloud, bytes));
    return bytes;
}
