// converters::fromPly on any bytes. A read of the whole file and one by the reader's single steps
// have to agree.
#include "converters/Converters.h"
#include "converters/PlySerializerDeserializer.h"
#include "fuzz/support/Verify.h"

#include <pcl/conversions.h>

#include <cstring>
#include <stdexcept>

namespace {

using Bytes = std::vector<unsigned char>;
using Cloud = pcl::PointCloud<pcl::PointXYZI>;

enum class Outcome { Refused, Accepted, EmptyScene, BadObjInfo };

Outcome readWhole(const Bytes& data, Cloud& cloud) {
    try {
        const converters::PlyReadResult result = converters::fromPly(data, cloud);
        FUZZ_VERIFY(result.success || !result.emptySceneInTeach);
        return result.emptySceneInTeach ? Outcome::EmptyScene
               : result.success         ? Outcome::Accepted
                                        : Outcome::Refused;
    } catch (const std::invalid_argument&) {
        return Outcome::BadObjInfo;
    } catch (const std::out_of_range&) {
        return Outcome::BadObjInfo;
    }
}

Outcome readBySteps(const Bytes& data, Cloud& cloud) {
    PLYDeserializer reader;
    if (data.empty()) {
        return Outcome::Refused;
    }
    reader.Init();
    if (reader.IsVertexCountZero(data)) {
        return Outcome::EmptyScene;
    }
    try {
        if (!reader.ReadHeader(data) || !reader.ReadData(data)) {
            return Outcome::Refused;
        }
    } catch (const std::invalid_argument&) {
        return Outcome::BadObjInfo;
    } catch (const std::out_of_range&) {
        return Outcome::BadObjInfo;
    }
    pcl::PCLPointCloud2& read = *reader.cloud;
    if (read.data.empty()) {
        // Points without properties: the conversion takes the address of their first byte.
        cloud.resize(std::size_t{read.width} * read.height);
        cloud.width = read.width;
        cloud.height = read.height;
        cloud.is_dense = false;
        return Outcome::Accepted;
    }
    read.row_step = read.point_step * read.width;
    pcl::fromPCLPointCloud2(read, cloud);
    return Outcome::Accepted;
}

/// What is declared cannot be held twice, which is a reason for the steps to refuse.
bool isRoomForSteps(const Cloud& cloud) {
    return cloud.size() <= 100'000;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const Bytes data(bytes, bytes + size);
    Cloud cloud;
    cloud.points.resize(1);
    cloud.width = 77;
    const Outcome outcome = readWhole(data, cloud);
    if (outcome != Outcome::Accepted) {
        FUZZ_VERIFY(cloud.size() == 1 && cloud.width == 77);
    }
    if (!isRoomForSteps(cloud)) {
        return 0;
    }
    Cloud expected;
    const Outcome expectedOutcome = readBySteps(data, expected);
    FUZZ_VERIFY(outcome == expectedOutcome);
    if (outcome == Outcome::Accepted) {
        FUZZ_VERIFY(cloud.width == expected.width && cloud.height == expected.height);
        FUZZ_VERIFY(cloud.size() == expected.size() && !cloud.is_dense);
        constexpr std::size_t usedBytes = 20; // x, y, z, padding, intensity
        for (std::size_t i = 0; i < cloud.size(); ++i) {
            FUZZ_VERIFY(std::memcmp(&cloud[i], &expected[i], usedBytes) == 0);
        }
    }
    return 0;
}
