// Files that other programs write: read as far as the reader's narrow form allows, refused with the
// exact message where it does not.
#include "converters/Converters.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/PlyBytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pcl/console/print.h>

#ifdef CONVERTERS_HAVE_PCL_IO
#include <pcl/io/ply_io.h>
#include <unistd.h>
#endif

namespace {

using testing::ElementsAre;
using Cloud = pcl::PointCloud<pcl::PointXYZI>;

LogMessage ignored(int line, const std::string& text) {
    return {1, "converters/PlySerializerDeserializer", "ReadHeader",
            "[PlyDeserializer::ReadHeader] Ignoring line " + std::to_string(line) + " : " + text +
                "\n"};
}

LogMessage refusedElement(int line, const std::string& name) {
    return {2, "converters/PlySerializerDeserializer", "ReadHeader",
            "[PlyDeserializer::ReadHeader] Error parsing ply, line: " + std::to_string(line) +
                " element type '" + name + "' not supported\n"};
}

const LogMessage kHeaderFailed = {2, "converters/PlySerializerDeserializer", "DeserializePlyT",
                                  "[PLYDeserializer::DeserializePlyT] Reading Header Failed!\n"};

class PlyOfOtherPrograms : public testing::Test {
protected:
    PlyOfOtherPrograms() { pcl::console::setVerbosityLevel(pcl::console::L_ERROR); }
    ~PlyOfOtherPrograms() override { pcl::console::setVerbosityLevel(pcl::console::L_INFO); }

    bool read(const std::vector<unsigned char>& file) {
        const CapturedLog log;
        const bool isRead = converters::fromPly(file, cloud).success;
        messages = log.messages();
        return isRead;
    }

    Cloud cloud;
    std::vector<LogMessage> messages;
};

/// The file without header lines from the first that begins with `first` up to, and without, the
/// one that begins with `last`: what a user does who wants the vertices alone.
std::vector<unsigned char> withoutLines(const std::vector<unsigned char>& file,
                                        const std::string& first, const std::string& last) {
    std::string text(file.begin(), file.end());
    const std::size_t begin = text.find("\n" + first) + 1;
    text.erase(begin, text.find("\n" + last) + 1 - begin);
    return bytesOf(text);
}

std::vector<unsigned char> sample(const std::string& name) {
    std::vector<unsigned char> file;
    EXPECT_TRUE(converters::from_file(std::string(CONVERTERS_TEST_DIR) + "/data/" + name, file));
    return file;
}

TEST_F(PlyOfOtherPrograms, VtkFilesAreRefusedForTheirFaceElement) {
    for (const char* name : {"vtk_ascii.ply", "vtk_binary.ply"}) {
        EXPECT_FALSE(read(sample(name)));
        EXPECT_THAT(messages, ElementsAre(ignored(3, "comment VTK generated PLY File"),
                                          refusedElement(9, "face"), kHeaderFailed));
        EXPECT_TRUE(cloud.empty());
    }
}

TEST_F(PlyOfOtherPrograms, VerticesOfVtkFilesAreRead) {
    for (const char* name : {"vtk_ascii.ply", "vtk_binary.ply"}) {
        ASSERT_TRUE(read(withoutLines(sample(name), "element face", "end_header"))) << name;
        ASSERT_EQ(cloud.size(), 3u);
        EXPECT_EQ(cloud[0].x, 0.5F);
        EXPECT_EQ(cloud[0].y, -1.25F);
        EXPECT_EQ(cloud[0].z, 3);
        EXPECT_EQ(cloud[1].x, 0.001F);
        EXPECT_EQ(cloud[1].y, 2);
        EXPECT_EQ(cloud[1].z, 1e6F);
        EXPECT_EQ(cloud[2].x, -7);
        EXPECT_EQ(cloud[2].y, 0.1F);
        EXPECT_EQ(cloud[2].z, 0);
        EXPECT_EQ(cloud[2].intensity, 0);
    }
}

#ifdef CONVERTERS_HAVE_PCL_IO

Cloud someCloud() {
    Cloud cloud(3, 2);
    for (std::size_t i = 0; i < cloud.size(); ++i) {
        const auto value = static_cast<float>(i);
        cloud[i].x = value + 0.5F;
        cloud[i].y = -value / 4;
        cloud[i].z = value * 1e6F;
        cloud[i].intensity = value / 8;
    }
    return cloud;
}

/// The bytes of a file by the Point Cloud Library's own writer.
std::vector<unsigned char> writtenByPcl(const Cloud& cloud, bool binary, bool camera) {
    const std::string path =
        testing::TempDir() + "written_by_pcl_" + std::to_string(getpid()) + ".ply";
    pcl::PCLPointCloud2 blob;
    pcl::toPCLPointCloud2(cloud, blob);
    pcl::PLYWriter().write(path, blob, Eigen::Vector4f::Zero(), Eigen::Quaternionf::Identity(),
                           binary, camera);
    std::vector<unsigned char> file;
    EXPECT_TRUE(converters::from_file(path, file));
    unlink(path.c_str());
    return file;
}

TEST_F(PlyOfOtherPrograms, PclFilesAreRefusedForTheElementBehindTheVertices) {
    for (const bool binary : {false, true}) {
        EXPECT_FALSE(read(writtenByPcl(someCloud(), binary, true)));
        EXPECT_THAT(messages, ElementsAre(ignored(3, "comment PCL generated"),
                                          refusedElement(9, "face"), kHeaderFailed));
        const auto withoutFaces =
            withoutLines(writtenByPcl(someCloud(), binary, true), "element face", "element camera");
        EXPECT_FALSE(read(withoutFaces));
        EXPECT_THAT(messages, ElementsAre(ignored(3, "comment PCL generated"),
                                          refusedElement(9, "camera"), kHeaderFailed));
        EXPECT_TRUE(cloud.empty());
    }
}

TEST_F(PlyOfOtherPrograms, VerticesOfPclFilesAreRead) {
    const Cloud original = someCloud();
    for (const bool binary : {false, true}) {
        auto file =
            withoutLines(writtenByPcl(original, binary, false), "element face", "end_header");
        if (binary) {
            // The grid that PCL puts behind the vertices: a count byte and an index for each.
            file.resize(file.size() - 5 * original.size());
        }
        ASSERT_TRUE(read(file));
        EXPECT_EQ(cloud.width, 3u);
        EXPECT_EQ(cloud.height, 2u);
        ASSERT_EQ(cloud.size(), original.size());
        for (std::size_t i = 0; i < cloud.size(); ++i) {
            EXPECT_EQ(cloud[i].x, original[i].x);
            EXPECT_EQ(cloud[i].y, original[i].y);
            EXPECT_EQ(cloud[i].z, original[i].z);
            EXPECT_EQ(cloud[i].intensity, original[i].intensity);
        }
    }
}

#else

TEST_F(PlyOfOtherPrograms, PclFiles) {
    GTEST_SKIP() << "built without pcl_io";
}

#endif

} // namespace
