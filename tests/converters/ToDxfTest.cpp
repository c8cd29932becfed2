#include "converters/Converters.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/OwnFileSystem.h"
#include "tests/support/TemporaryDirectory.h"

#include <dxflib/dl_creationadapter.h>
#include <dxflib/dl_dxf.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <limits>
#include <random>
#include <sstream>

namespace {

using Points = std::vector<cv::Point3_<double>>;
using Bytes = std::vector<unsigned char>;

std::filesystem::path transientFile() {
    return converters::tmpDxfPath / ("tmp" + std::to_string(getpid()) + ".dxf");
}

LogMessage cannotOpenTransientFile() {
    return {0, "dxfeditor/DXFWriter", "save",
            "DXFWriter: Cannot open " + transientFile().string() + " for writing."};
}

std::string textOf(const Bytes& bytes) {
    return std::string(bytes.begin(), bytes.end());
}

/// The drawing that dxflib itself makes of the points.
std::string dxflibDrawing(const Points& points) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("reference.dxf");
    DL_Dxf engine;
    const std::unique_ptr<DL_WriterA> file(engine.out(path.c_str(), DL_Codes::AC1009));
    engine.writeHeader(*file);
    file->sectionEnd();
    file->sectionTables();
    file->tableLinetypes(1);
    engine.writeLinetype(*file, DL_LinetypeData("CONTINUOUS", "Solid Line", 0, 0, 0.0, nullptr));
    file->tableEnd();
    file->tableLayers(2);
    engine.writeLayer(*file, DL_LayerData("0", 0), DL_Attributes("0", 7, -1, -1, "CONTINUOUS"));
    engine.writeLayer(*file, DL_LayerData("1", 0), DL_Attributes("1", 7, 7, -1, "CONTINUOUS"));
    file->tableEnd();
    file->sectionEnd();
    file->sectionBlocks();
    file->sectionEnd();
    file->sectionEntities();
    for (const cv::Point3_<double>& point : points) {
        engine.writePoint(*file, DL_PointData(point.x, point.y, point.z),
                          DL_Attributes("0", 7, 1, 10, "CONTINUOUS"));
    }
    file->sectionEnd();
    file->dxfEOF();
    file->close();
    return contentOf(path);
}

Points randomPoints(std::size_t count) {
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> coordinate(-1000.0, 1000.0);
    Points points;
    for (std::size_t i = 0; i < count; ++i) {
        points.emplace_back(coordinate(random), coordinate(random), coordinate(random));
    }
    return points;
}

/// Removes what a test put at the path of the transient file.
class ToDxf : public ::testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directories(converters::tmpDxfPath); }
    void TearDown() override { std::filesystem::remove_all(transientFile()); }

    TemporaryDirectory m_directory;
    Bytes m_out = {1, 2, 3};
};

TEST_F(ToDxf, WritesWhatDxflibWrites) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const Points& points :
         {Points(), Points{{1.0, 2.0, 3.0}},
          Points{{-0.0, 1e-300, 1e236}, {infinity, -infinity, std::nan("")}}, randomPoints(5000)}) {
        EXPECT_TRUE(converters::toDxf(points, m_out));
        // Not EXPECT_EQ: to show how two long texts differ takes it the product of their lines.
        EXPECT_TRUE(textOf(m_out) == dxflibDrawing(points)) << points.size() << " points";
    }
}

TEST_F(ToDxf, DrawingOfAFewPointsIsWrittenByteForByte) {
    const Points points = {{1.5, -2.0, 1.0 / 3.0}, {100.0, 0.0, -0.0}, {0.1, 1e20, 1e-16}};
    EXPECT_TRUE(converters::toDxf(points, m_out));
    EXPECT_EQ(textOf(m_out), contentOf(CONVERTERS_TEST_DIR "/golden/points.dxf"));
}

TEST_F(ToDxf, EmptyVectorGivesADrawingWithoutEntities) {
    EXPECT_TRUE(converters::toDxf(Points(), m_out));
    const std::string text = textOf(m_out);
    const std::string end = "  2\nENTITIES\n  0\nENDSEC\n  0\nEOF\n";
    ASSERT_GT(text.size(), end.size());
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

TEST_F(ToDxf, DirectoryStaysAndTheFileGoes) {
    EXPECT_TRUE(converters::toDxf(Points{{1.0, 2.0, 3.0}}, m_out));
    EXPECT_TRUE(std::filesystem::is_directory(converters::tmpDxfPath));
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(transientFile())));
}

TEST_F(ToDxf, LogsNothing) {
    const CapturedLog log;
    EXPECT_TRUE(converters::toDxf(Points{{1.0, 2.0, 3.0}}, m_out));
    EXPECT_TRUE(log.messages().empty());
}

TEST_F(ToDxf, ValuesThatDxflibCannotFormatAreWritten) {
    const double greatest = std::numeric_limits<double>::max();
    EXPECT_TRUE(converters::toDxf(Points{{greatest, -greatest, 1e238}}, m_out));
    std::ostringstream expected;
    expected.imbue(std::locale::classic());
    expected.precision(1);
    expected << std::fixed << "\n 10\n"
             << greatest << "\n 20\n"
             << -greatest << "\n 30\n"
             << 1e238 << "\n  0\nENDSEC\n";
    EXPECT_NE(textOf(m_out).find(expected.str()), std::string::npos);
}

TEST_F(ToDxf, CloudGivesTheDrawingOfItsPointsWhateverItsShapeSays) {
    pcl::PointCloud<pcl::PointXYZ> cloud;
    Points points;
    for (const float x : {0.1F, -3.5F, std::numeric_limits<float>::quiet_NaN(),
                          std::numeric_limits<float>::max()}) {
        cloud.points.emplace_back(x, 2.0F * x, 0.0F);
        points.emplace_back(static_cast<double>(x), static_cast<double>(2.0F * x), 0.0);
    }
    cloud.width = 1;
    cloud.height = 77;
    cloud.is_dense = true;
    Bytes expected;
    EXPECT_TRUE(converters::toDxf(points, expected));
    EXPECT_TRUE(converters::toDxf(cloud, m_out));
    EXPECT_EQ(m_out, expected);

    cloud.points.clear();
    EXPECT_TRUE(converters::toDxf(cloud, m_out));
    EXPECT_EQ(textOf(m_out), dxflibDrawing({}));
}

/// The points that dxflib reads.
class PointCollector : public DL_CreationAdapter {
public:
    void addPoint(const DL_PointData& data) override {
        points.emplace_back(data.x, data.y, data.z);
    }
    Points points;
};

TEST_F(ToDxf, DxflibReadsThePointsBack) {
    // Values of few digits: a text of sixteen decimals tells them exactly.
    Points points = randomPoints(1000);
    for (cv::Point3_<double>& point : points) {
        point = {std::nearbyint(point.x * 64) / 64, std::nearbyint(point.y), point.z * 0.0};
    }
    EXPECT_TRUE(converters::toDxf(points, m_out));
    const std::string path = m_directory.file("drawing.dxf");
    writeContent(path, textOf(m_out));
    PointCollector collector;
    ASSERT_TRUE(DL_Dxf().in(path, &collector));
    EXPECT_EQ(collector.points, points);
}

TEST_F(ToDxf, LocalesChangeNothing) {
    const Points points = {{1234567.5, -0.25, 1e15}};
    const std::string expected = dxflibDrawing(points);
    for (const char groupSize : {char{1}, char{2}, char{3}}) {
        const CommaLocale commas(groupSize);
        EXPECT_TRUE(converters::toDxf(points, m_out));
        EXPECT_EQ(textOf(m_out), expected);
        EXPECT_FALSE(std::filesystem::exists(transientFile()));
    }
}

TEST_F(ToDxf, LeftOverFileIsReplaced) {
    const std::string expected = dxflibDrawing({});
    writeContent(transientFile(), std::string(100'000, 'x'));
    chmod(transientFile().c_str(), 0);
    EXPECT_TRUE(converters::toDxf(Points(), m_out));
    EXPECT_EQ(textOf(m_out), expected);
}

TEST_F(ToDxf, LeftOverHardLinkIsNotWrittenThrough) {
    const std::string victim =
        (converters::tmpDxfPath / "victim").string() + std::to_string(getpid());
    writeContent(victim, "precious");
    ASSERT_EQ(link(victim.c_str(), transientFile().c_str()), 0);
    EXPECT_TRUE(converters::toDxf(Points(), m_out));
    EXPECT_EQ(contentOf(victim), "precious");
    unlink(victim.c_str());
}

TEST_F(ToDxf, LeftOverSymbolicLinkIsRemovedAndNotFollowed) {
    const std::string victim = m_directory.file("victim");
    writeContent(victim, "precious");
    for (const std::string& target : {victim, m_directory.file("missing"),
                                      m_directory.path().string(), std::string("/dev/full")}) {
        ASSERT_EQ(symlink(target.c_str(), transientFile().c_str()), 0);
        EXPECT_TRUE(converters::toDxf(Points(), m_out));
        EXPECT_EQ(textOf(m_out), dxflibDrawing({}));
        EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(transientFile())));
    }
    EXPECT_EQ(contentOf(victim), "precious");
    EXPECT_FALSE(std::filesystem::exists(m_directory.file("missing")));
}

TEST_F(ToDxf, ReasonIsWhatIsReportedAndNoneOtherwise) {
    std::string reason = "of before";
    EXPECT_TRUE(converters::toDxf(Points(), m_out, reason));
    EXPECT_EQ(reason, "");
    std::filesystem::create_directory(transientFile());
    writeContent(transientFile() / "content", "precious");
    EXPECT_FALSE(converters::toDxf(Points(), m_out, reason));
    EXPECT_EQ(reason, cannotOpenTransientFile().text);
}

TEST_F(ToDxf, LeftOverPipeAndEmptyDirectoryAreReplaced) {
    ASSERT_EQ(mkfifo(transientFile().c_str(), 0600), 0);
    EXPECT_TRUE(converters::toDxf(Points(), m_out));
    EXPECT_EQ(textOf(m_out), dxflibDrawing({}));
    std::filesystem::create_directory(transientFile());
    EXPECT_TRUE(converters::toDxf(Points(), m_out));
    EXPECT_EQ(textOf(m_out), dxflibDrawing({}));
}

TEST_F(ToDxf, DirectoryInPlaceOfTheFileIsReportedAndKept) {
    std::filesystem::create_directory(transientFile());
    writeContent(transientFile() / "content", "precious");
    const CapturedLog log;
    EXPECT_FALSE(converters::toDxf(Points{{1.0, 2.0, 3.0}}, m_out));
    EXPECT_TRUE(m_out.empty());
    EXPECT_EQ(log.messages(), std::vector<LogMessage>{cannotOpenTransientFile()});
    EXPECT_EQ(contentOf(transientFile() / "content"), "precious");
}

TEST_F(ToDxf, ExceptionOfTheLogReachesTheCallerAndNothingIsTouched) {
    std::filesystem::create_directory(transientFile());
    writeContent(transientFile() / "content", "precious");
    {
        const ThrowingLog throwing;
        EXPECT_THROW(converters::toDxf(Points{{1.0, 2.0, 3.0}}, m_out), std::runtime_error);
    }
    EXPECT_TRUE(m_out.empty());
    EXPECT_EQ(contentOf(transientFile() / "content"), "precious");
    std::filesystem::remove_all(transientFile());
    EXPECT_TRUE(converters::toDxf(Points(), m_out));
    EXPECT_EQ(textOf(m_out), dxflibDrawing({}));
}

TEST_F(ToDxf, FileSizeLimitGivesFalseAndLeavesNothing) {
    const Points points = randomPoints(10'000);
    Bytes complete;
    ASSERT_TRUE(converters::toDxf(points, complete));
    for (const std::size_t limit : {std::size_t{0}, std::size_t{1}, std::size_t{1} << 18,
                                    complete.size() - 1, complete.size()}) {
        const int status = inChildProcess([&] {
            const rlimit limits = {limit, limit};
            signal(SIGXFSZ, SIG_IGN);
            setrlimit(RLIMIT_FSIZE, &limits);
            const bool result = converters::toDxf(points, m_out);
            const bool isLeft =
                std::filesystem::exists(std::filesystem::symlink_status(transientFile()));
            const bool isRight = result ? m_out == complete : m_out.empty();
            return isLeft || !isRight ? 2 : result ? 1 : 0;
        });
        EXPECT_EQ(status, limit < complete.size() ? 0 : 1) << limit;
    }
}

/// An empty file system over the directory of transient files, for this process alone. Its parents
/// are new too, for every user to pass: those that are there may be for one user alone.
bool mountOwnDirectory(const char* options) {
    umask(0022);
    return mountOwnFileSystem(converters::tmpDxfPath.parent_path().parent_path(), "mode=755") &&
           mountOwnFileSystem(converters::tmpDxfPath, options);
}

TEST_F(ToDxf, FullFileSystemGivesFalseAndLeavesNothing) {
    const int status = inChildProcess([&] {
        if (!mountOwnDirectory("size=256k")) {
            return notPermitted;
        }
        const bool large = converters::toDxf(randomPoints(10'000), m_out);
        const bool isEmpty = m_out.empty();
        const bool isLeft = !std::filesystem::is_empty(converters::tmpDxfPath);
        const bool small = converters::toDxf(Points{{1.0, 2.0, 3.0}}, m_out);
        return (large ? 1 : 0) + (isEmpty ? 0 : 2) + (isLeft ? 4 : 0) + (small ? 0 : 8);
    });
    if (status == notPermitted) {
        GTEST_SKIP() << "no permission to mount a file system";
    }
    EXPECT_EQ(status, 0);
}

TEST_F(ToDxf, FileThatCannotBeReadBackGivesFalseAndIsKept) {
    const int status = inChildProcess([&] {
        if (!mountOwnDirectory("mode=777") || setuid(nobody) != 0) {
            return notPermitted;
        }
        umask(0477);
        const bool result = converters::toDxf(Points{{1.0, 2.0, 3.0}}, m_out);
        const bool isKept = std::filesystem::file_size(transientFile()) > 0;
        return (result ? 1 : 0) + (m_out.empty() ? 0 : 2) + (isKept ? 0 : 4);
    });
    if (status == notPermitted) {
        GTEST_SKIP() << "no permission to mount a file system and to become another user";
    }
    EXPECT_EQ(status, 0);
}

TEST_F(ToDxf, UmaskThatTakesTheOwnersWritePermissionAwayDoesNoHarm) {
    const std::string expected = dxflibDrawing({{1.0, 2.0, 3.0}});
    const int status = inChildProcess([&] {
        if (!mountOwnDirectory("mode=777") || setuid(nobody) != 0) {
            return notPermitted;
        }
        umask(0222);
        const bool result = converters::toDxf(Points{{1.0, 2.0, 3.0}}, m_out);
        const bool isLeft = !std::filesystem::is_empty(converters::tmpDxfPath);
        return (result ? 0 : 1) + (textOf(m_out) == expected ? 0 : 2) + (isLeft ? 4 : 0);
    });
    if (status == notPermitted) {
        GTEST_SKIP() << "no permission to mount a file system and to become another user";
    }
    EXPECT_EQ(status, 0);
}

TEST_F(ToDxf, MessageNamesThePathWhenTheProcessMayOpenNoFurtherFile) {
#ifdef CONVERTERS_ADDRESS_SANITIZER
    GTEST_SKIP()
        << "sanitizers open pipes to look at memory, and take what they cannot see for bad";
#endif
    for (const rlim_t further : {0U, 1U}) {
        const int status = inChildProcess([&] {
            const int next = dup(0);
            close(next);
            const rlimit limits = {static_cast<rlim_t>(next) + further,
                                   static_cast<rlim_t>(next) + further};
            setrlimit(RLIMIT_NOFILE, &limits);
            const CapturedLog log;
            const bool result = converters::toDxf(Points{{1.0, 2.0, 3.0}}, m_out);
            const bool isReported =
                log.messages() == std::vector<LogMessage>{cannotOpenTransientFile()};
            return (result ? 1 : 0) + (m_out.empty() ? 0 : 2) + (isReported ? 0 : 4) +
                   (std::filesystem::exists(transientFile()) ? 8 : 0);
        });
        EXPECT_EQ(status, 0) << further;
    }
}

TEST_F(ToDxf, LeftOverThatCannotBeRemovedGivesFalseAndIsNotFollowed) {
    const int status = inChildProcess([&] {
        // In a sticky directory users cannot remove each other's files.
        if (!mountOwnDirectory("mode=1777")) {
            return notPermitted;
        }
        const std::filesystem::path victim = converters::tmpDxfPath / "victim";
        writeContent(victim, "precious");
        chmod(victim.c_str(), 0666);
        if (symlink(victim.c_str(), transientFile().c_str()) != 0 || setuid(nobody) != 0) {
            return notPermitted;
        }
        const CapturedLog log;
        const bool result = converters::toDxf(Points{{1.0, 2.0, 3.0}}, m_out);
        const bool isReported =
            log.messages() == std::vector<LogMessage>{cannotOpenTransientFile()};
        return (result ? 1 : 0) + (m_out.empty() ? 0 : 2) +
               (contentOf(victim) == "precious" ? 0 : 4) + (isReported ? 0 : 8);
    });
    if (status == notPermitted) {
        GTEST_SKIP() << "no permission to mount a file system and to become another user";
    }
    EXPECT_EQ(status, 0);
}

TEST_F(ToDxf, DirectoryWithoutPermissionToWriteGivesFalseAndAMessage) {
    const int status = inChildProcess([&] {
        if (!mountOwnDirectory("mode=755") || setuid(nobody) != 0) {
            return notPermitted;
        }
        const CapturedLog log;
        const bool result = converters::toDxf(Points{{1.0, 2.0, 3.0}}, m_out);
        const bool isReported =
            log.messages() == std::vector<LogMessage>{cannotOpenTransientFile()};
        return (result ? 1 : 0) + (m_out.empty() ? 0 : 2) + (isReported ? 0 : 4);
    });
    if (status == notPermitted) {
        GTEST_SKIP() << "no permission to mount a file system and to become another user";
    }
    EXPECT_EQ(status, 0);
}

TEST_F(ToDxf, MissingDirectoryIsCreatedWithItsParentsAndFailureThrows) {
    const int status = inChildProcess([&] {
        // An empty file system over the base directory hides the directory that other tests made.
        const std::filesystem::path base = converters::tmpDxfPath.parent_path();
        const std::filesystem::path product = base.parent_path();
        if (!mountOwnFileSystem(product, "")) {
            return notPermitted;
        }
        const bool created = converters::toDxf(Points{{1.0, 2.0, 3.0}}, m_out) &&
                             std::filesystem::is_directory(converters::tmpDxfPath);
        std::filesystem::remove_all(base);
        writeContent(base, "in the way of the directory");
        try {
            converters::toDxf(Points{{1.0, 2.0, 3.0}}, m_out);
            return 2;
        } catch (const std::filesystem::filesystem_error&) {
            return created && m_out.empty() ? 0 : 1;
        }
    });
    if (status == notPermitted) {
        GTEST_SKIP() << "no permission to mount a file system";
    }
    EXPECT_EQ(status, 0);
}

TEST_F(ToDxf, ProcessesAtTheSameTimeDoNotDisturbEachOther) {
    const auto convertOften = [](double x) {
        const Points points(3000, {x, 0.0, 0.0});
        const std::string expected = dxflibDrawing(points);
        for (int i = 0; i < 50; ++i) {
            Bytes out;
            if (!converters::toDxf(points, out) || textOf(out) != expected) {
                return 1;
            }
        }
        return 0;
    };
    const pid_t child = fork();
    if (child == 0) {
        _exit(convertOften(1.25));
    }
    EXPECT_EQ(convertOften(-7.0), 0);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

} // namespace
