#include "dxfeditor/DXFWriter.h"

#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFLineType.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/OwnFileSystem.h"
#include "tests/support/TemporaryDirectory.h"

#include <dxflib/dl_creationadapter.h>
#include <dxflib/dl_dxf.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <clocale>
#include <future>
#include <limits>

namespace {

const LogMessage unsupportedEntity = {0, "dxfeditor/DXFWriter", "fillEntities",
                                      "DXFWriter:: attempted writing of unsuported entity"};

LogMessage cannotOpen(const std::string& path) {
    return {0, "dxfeditor/DXFWriter", "save", "DXFWriter: Cannot open " + path + " for writing."};
}

std::shared_ptr<DXFAttributes> attributesOf(const std::string& layer, int color) {
    return std::make_shared<DXFAttributes>(layer, color, -1, 0, "CONTINUOUS", 1.0, -1, false);
}

template <class Entity, class... Arguments>
std::shared_ptr<Entity> onLayer(const std::string& layer, int color, Arguments&&... arguments) {
    auto entity = std::make_shared<Entity>(std::forward<Arguments>(arguments)...);
    entity->setAttributes(attributesOf(layer, color));
    return entity;
}

std::shared_ptr<DXFLayer> layerNamed(const std::string& name, int flags, int color) {
    auto layer = std::make_shared<DXFLayer>(name, flags);
    layer->setAttributes(attributesOf(name, color));
    return layer;
}

std::shared_ptr<DXFPolyline> polylineOf(unsigned flags, const std::vector<DXFVertex>& vertices) {
    auto polyline = std::make_shared<DXFPolyline>(0U, 0U, flags);
    for (const DXFVertex& vertex : vertices) {
        polyline->appendPoint(vertex);
    }
    return polyline;
}

class DXFWriterTest : public ::testing::Test {
protected:
    std::string saved() {
        EXPECT_TRUE(DXFWriter(m_document).save(m_path));
        return contentOf(m_path);
    }

    TemporaryDirectory m_directory;
    std::string m_path = m_directory.file("drawing.dxf");
    DXFDocument m_document;
};

// The fixed parts of every file.
const std::string fileStart = "999\ndxflib 3.26.4.0\n"
                              "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1009\n  0\nENDSEC\n"
                              "  0\nSECTION\n  2\nTABLES\n"
                              "  0\nTABLE\n  2\nLTYPE\n 70\n1\n"
                              "  0\nLTYPE\n  2\nCONTINUOUS\n 70\n0\n  3\nSolid line\n 72\n65\n"
                              " 73\n0\n 40\n0.0\n  0\nENDTAB\n";
const std::string layerZero = "  0\nLAYER\n  2\n0\n 70\n0\n 62\n7\n  6\nCONTINUOUS\n";
const std::string entitiesStart = "  0\nENDTAB\n  0\nENDSEC\n"
                                  "  0\nSECTION\n  2\nBLOCKS\n  0\nENDSEC\n"
                                  "  0\nSECTION\n  2\nENTITIES\n";
const std::string fileEnd = "  0\nENDSEC\n  0\nEOF\n";

std::string layerTable(int count) {
    return "  0\nTABLE\n  2\nLAYER\n 70\n" + std::to_string(count) + "\n";
}

std::string pointText(const std::string& layer, int color, const std::string& x) {
    return "  0\nPOINT\n  8\n" + layer + "\n 62\n" + std::to_string(color) + "\n 10\n" + x +
           "\n 20\n0.0\n 30\n0.0\n";
}

TEST_F(DXFWriterTest, EmptyDocumentGivesACompleteFileWithoutEntities) {
    EXPECT_EQ(saved(), fileStart + layerTable(1) + layerZero + entitiesStart + fileEnd);
}

TEST_F(DXFWriterTest, DocumentWithoutLayersGetsLayerZero) {
    EXPECT_NE(saved().find(layerTable(1) + layerZero + "  0\nENDTAB\n"), std::string::npos);
    EXPECT_TRUE(m_document.layers().empty());
}

TEST_F(DXFWriterTest, LayerZeroComesBeforeTheOtherLayers) {
    m_document.addLayer(layerNamed("b", 1, 5));
    m_document.addLayer(layerNamed("a", 4, 6));
    EXPECT_NE(saved().find(layerTable(3) + layerZero +
                           "  0\nLAYER\n  2\nb\n 70\n1\n 62\n5\n  6\nCONTINUOUS\n"
                           "  0\nLAYER\n  2\na\n 70\n4\n 62\n6\n  6\nCONTINUOUS\n  0\nENDTAB\n"),
              std::string::npos);
    EXPECT_EQ(m_document.layers().size(), 2U);
}

TEST_F(DXFWriterTest, DocumentWithLayerZeroGetsNoOther) {
    m_document.addLayer(layerNamed("walls", 0, 1));
    m_document.addLayer(layerNamed("0", 0, 2));
    const auto bare = std::make_shared<DXFPoint>(1.0, 0.0, 0.0);
    m_document.addEntity(bare);
    EXPECT_NE(saved().find(layerTable(2) +
                           "  0\nLAYER\n  2\nwalls\n 70\n0\n 62\n1\n  6\nCONTINUOUS\n"
                           "  0\nLAYER\n  2\n0\n 70\n0\n 62\n2\n  6\nCONTINUOUS\n  0\nENDTAB\n"),
              std::string::npos);
    EXPECT_EQ(bare->attributes(), nullptr) << "entities are not patched";
}

TEST_F(DXFWriterTest, EntityWithoutAttributesIsWrittenAsOnTheMissingLayerZero) {
    m_document.addLayer(layerNamed("0", 0, 2));
    m_document.addEntity(std::make_shared<DXFPoint>(1.0, 0.0, 0.0));
    m_document.addEntity(std::make_shared<DXFPointVector>(
        std::vector<cv::Point3_<double>>{{2.0, 0.0, 0.0}, {3.0, 0.0, 0.0}}));
    m_document.addEntity(polylineOf(0, {}));
    EXPECT_NE(saved().find(entitiesStart + pointText("0", 7, "1.0") + pointText("0", 7, "2.0") +
                           pointText("0", 7, "3.0") + "  0\nPOLYLINE\n  8\n0\n 62\n7\n"),
              std::string::npos);
}

TEST_F(DXFWriterTest, LayerWithoutAttributesIsWrittenLikeTheMissingLayerZero) {
    m_document.addLayer(std::make_shared<DXFLayer>("bare", 1));
    EXPECT_NE(saved().find(layerTable(2) + layerZero +
                           "  0\nLAYER\n  2\nbare\n 70\n1\n 62\n7\n  6\nCONTINUOUS\n"),
              std::string::npos);
}

TEST_F(DXFWriterTest, EmptyLayerPointersAreNeitherWrittenNorCounted) {
    m_document.addLayer(nullptr);
    m_document.addLayer(layerNamed("0", 0, 7));
    EXPECT_NE(saved().find(layerTable(1) + layerZero + "  0\nENDTAB\n"), std::string::npos);
}

TEST_F(DXFWriterTest, LayerWithoutNameIsCountedThoughDxflibLeavesItOut) {
    m_document.addLayer(layerNamed("", 0, 7));
    EXPECT_NE(saved().find(layerTable(2) + layerZero + "  0\nENDTAB\n"), std::string::npos);
}

TEST_F(DXFWriterTest, AddingLayerZeroGivesItsAttributesToEntitiesThatHaveNoneForGood) {
    const auto first = std::make_shared<DXFPoint>(1.0, 0.0, 0.0);
    const auto second = std::make_shared<DXFCircle>(cv::Point3_<double>(0.0, 0.0, 0.0), 1.0);
    const auto own = onLayer<DXFPoint>("walls", 3, 2.0, 0.0, 0.0);
    const auto ownAttributes = own->attributes();
    m_document.addEntity(first);
    m_document.addEntity(own);
    m_document.addEntity(second);
    EXPECT_FALSE(DXFWriter(m_document).save(m_path));
    ASSERT_NE(first->attributes(), nullptr);
    EXPECT_EQ(first->attributes(), second->attributes());
    EXPECT_EQ(own->attributes(), ownAttributes);
    EXPECT_EQ(first->attributes()->layerName(), "0");
    EXPECT_EQ(first->attributes()->color(), 7);
    EXPECT_EQ(first->attributes()->color24(), -1);
    EXPECT_EQ(first->attributes()->width(), -1);
    EXPECT_EQ(first->attributes()->lineType(), "CONTINUOUS");
    EXPECT_EQ(first->attributes()->lineTypeScale(), 1.0);
    EXPECT_EQ(first->attributes()->handle(), -1);
    EXPECT_FALSE(first->attributes()->inPaperSpace());
}

TEST_F(DXFWriterTest, LineTypeTableHoldsContinuousAloneWhateverTheDocumentHas) {
    m_document.addLineType(std::make_shared<DXFLineType>("DASHED", "Dashed", 0, 0, 1.0, nullptr));
    EXPECT_EQ(saved(), fileStart + layerTable(1) + layerZero + entitiesStart + fileEnd);
}

TEST_F(DXFWriterTest, PointVectorGivesOnePointEachOnOneLayer) {
    m_document.addEntity(onLayer<DXFPointVector>(
        "cloud", 3,
        std::vector<cv::Point3_<double>>{{1.0, 0.0, 0.0}, {-2.5, 0.0, 0.0}, {1e25, 0.0, 0.0}}));
    const std::string text = saved();
    EXPECT_EQ(text.substr(text.find("ENTITIES\n") + 9),
              pointText("cloud", 3, "1.0") + pointText("cloud", 3, "-2.5") +
                  pointText("cloud", 3, "10000000000000000905969664.0") + fileEnd);
}

TEST_F(DXFWriterTest, PointVectorIsWrittenLikeSinglePoints) {
    const std::vector<cv::Point3_<double>> points = {{1.0, 2.0, 3.0}, {-0.1, 1e-9, 1e9}};
    const std::string longerThanABlock(300'000, 'a');
    for (const std::string& layer : {std::string("a"), longerThanABlock}) {
        for (const int color : {7, 256, 0}) {
            const char* const lineType = color == 7 ? "CONTINUOUS" : "BYLAYER";
            const auto attributes =
                std::make_shared<DXFAttributes>(layer, color, 5, 10, lineType, 2.0, 77, false);
            DXFDocument single;
            for (const cv::Point3_<double>& point : points) {
                const auto entity = std::make_shared<DXFPoint>(point.x, point.y, point.z);
                entity->setAttributes(attributes);
                single.addEntity(entity);
            }
            DXFDocument run;
            const auto entity = std::make_shared<DXFPointVector>(points);
            entity->setAttributes(attributes);
            run.addEntity(entity);
            ASSERT_TRUE(DXFWriter(single).save(m_path));
            const std::string expected = contentOf(m_path);
            ASSERT_TRUE(DXFWriter(run).save(m_path));
            EXPECT_TRUE(contentOf(m_path) == expected) << color;
        }
    }
}

TEST_F(DXFWriterTest, EntitiesComeInDocumentOrderAndAsOftenAsListed) {
    const auto point = onLayer<DXFPoint>("a", 1, 1.0, 0.0, 0.0);
    m_document.addEntity(point);
    m_document.addEntity(onLayer<DXFPoint>("b", 2, 2.0, 0.0, 0.0));
    m_document.addEntity(point);
    const std::string text = saved();
    EXPECT_EQ(text.substr(text.find("ENTITIES\n") + 9), pointText("a", 1, "1.0") +
                                                            pointText("b", 2, "2.0") +
                                                            pointText("a", 1, "1.0") + fileEnd);
}

TEST_F(DXFWriterTest, SmallDrawingIsWrittenByteForByte) {
    m_document.addLayer(layerNamed("walls", 4, 1));
    m_document.addEntity(onLayer<DXFPoint>("walls", 3, 1.5, -2.0, 1.0 / 3.0));
    m_document.addEntity(std::make_shared<DXFPointVector>(
        std::vector<cv::Point3_<double>>{{100.0, 0.0, -0.0}, {0.1, 1e20, 1e-16}}));
    const auto polyline =
        polylineOf(1, {DXFVertex(0.0, 0.0, 0.0, true, 0.0), DXFVertex(10.0, 0.0, 0.0, true, 0.5),
                       DXFVertex(10.0, 5.25, 2.0, true, 0.0)});
    polyline->setAttributes(attributesOf("walls", 256));
    m_document.addEntity(polyline);
    EXPECT_EQ(saved(), contentOf(CONVERTERS_TEST_DIR "/golden/drawing.dxf"));
}

TEST_F(DXFWriterTest, UnsupportedEntitiesEndTheFileInsideTheEntitiesSection) {
    const cv::Point3_<double> origin(0.0, 0.0, 0.0);
    const std::vector<std::shared_ptr<DXFEntity>> unsupported = {
        std::make_shared<DXFCircle>(origin, 1.0), std::make_shared<DXFArc>(origin, 1.0, 0.0, 90.0),
        std::make_shared<DXFLine>(origin, origin), std::make_shared<DXFSpline>(3U, 0U, 0U, 0U, 0),
        nullptr};
    for (const std::shared_ptr<DXFEntity>& entity : unsupported) {
        DXFDocument document;
        document.addEntity(onLayer<DXFPoint>("a", 1, 1.0, 0.0, 0.0));
        document.addEntity(entity);
        document.addEntity(onLayer<DXFPoint>("a", 1, 2.0, 0.0, 0.0));
        const CapturedLog log;
        DXFWriter writer(document);
        EXPECT_FALSE(writer.save(m_path));
        EXPECT_EQ(log.messages(), std::vector<LogMessage>{unsupportedEntity});
        // Readable as soon as save has returned.
        EXPECT_EQ(contentOf(m_path),
                  fileStart + layerTable(1) + layerZero + entitiesStart + pointText("a", 1, "1.0"));
    }
}

/// An entity of a kind that nobody knows.
class UnknownEntity : public DXFEntity {
public:
    explicit UnknownEntity(int type) : m_type(type) {}
    int type() const override { return m_type; }
    void setup() override {}
    DXFEntity* clone() const override { return new UnknownEntity(*this); }

private:
    int m_type;
};

TEST_F(DXFWriterTest, UnknownTypeCodesAreUnsupported) {
    for (const int type : {-1, 7, 1000}) {
        DXFDocument document;
        document.addEntity(std::make_shared<UnknownEntity>(type));
        const CapturedLog log;
        EXPECT_FALSE(DXFWriter(document).save(m_path));
        EXPECT_EQ(log.messages(), std::vector<LogMessage>{unsupportedEntity});
    }
}

TEST_F(DXFWriterTest, EntityThatIsNotOfItsTypesClassIsFatal) {
    for (const int type : {0, 1, 2}) {
        DXFDocument document;
        document.addEntity(std::make_shared<UnknownEntity>(type));
        DXFWriter writer(document);
        EXPECT_DEATH(writer.save(m_path), "terminate");
    }
}

/// A polyline and a point in one, which says what it is told to.
class Both : public DXFPolyline, public DXFPoint {
public:
    explicit Both(int type) : DXFPolyline(0, 0, 0), DXFPoint(1.0, 0.0, 0.0), m_type(type) {
        appendPoint(DXFVertex(5.0, 6.0, 0.0, true, 0.0));
        DXFPoint::setAttributes(attributesOf("a", 1));
        DXFPolyline::setAttributes(attributesOf("a", 1));
    }
    int type() const override { return m_type; }
    void setup() override {}
    DXFEntity* clone() const override { return DXFPoint::clone(); }

private:
    int m_type;
};

TEST_F(DXFWriterTest, EntityOfSeveralClassesIsWrittenAsTheOneThatItsTypeNames) {
    const auto point = std::make_shared<Both>(DXFEntityType::Point);
    m_document.addEntity(std::shared_ptr<DXFPolyline>(point));
    const auto polyline = std::make_shared<Both>(DXFEntityType::Polyline);
    m_document.addEntity(std::shared_ptr<DXFPoint>(polyline));
    const std::string vertex = "  0\nVERTEX\n  8\na\n 10\n5.0\n 20\n6.0\n 30\n0.0\n";
    const std::string text = saved();
    EXPECT_THAT(text, testing::HasSubstr("ENTITIES\n" + pointText("a", 1, "1.0")));
    EXPECT_THAT(text, testing::HasSubstr(vertex));
}

TEST_F(DXFWriterTest, ThrowingLogReachesTheCallerAtAnUnsupportedEntity) {
    m_document.addEntity(onLayer<DXFPoint>("a", 1, 1.0, 0.0, 0.0));
    m_document.addEntity(nullptr);
    {
        DXFWriter writer(m_document);
        const ThrowingLog log;
        EXPECT_THROW(writer.save(m_path), std::runtime_error);
    }
    // What came before it is in the file, as without the exception.
    EXPECT_EQ(contentOf(m_path),
              fileStart + layerTable(1) + layerZero + entitiesStart + pointText("a", 1, "1.0"));
}

TEST_F(DXFWriterTest, ThrowingLogReachesTheCallerWhenTheFileCannotBeOpened) {
    DXFWriter writer(m_document);
    {
        const ThrowingLog log;
        EXPECT_THROW(writer.save(m_directory.file("missing/drawing.dxf")), std::runtime_error);
    }
    EXPECT_TRUE(writer.save(m_path));
}

TEST_F(DXFWriterTest, FileThatCannotBeCreatedIsReported) {
    for (const std::string& path :
         {m_directory.file("missing/drawing.dxf"), m_directory.path().string(), std::string(),
          m_directory.file("%s%n.dxf/x")}) {
        const CapturedLog log;
        EXPECT_FALSE(DXFWriter(m_document).save(path));
        EXPECT_EQ(log.messages(), std::vector<LogMessage>{cannotOpen(path)});
    }
}

TEST_F(DXFWriterTest, WhyTheLastFileWasNotOpenedIsKept) {
    DXFWriter writer(m_document);
    EXPECT_EQ(writer.whyNotOpened(), "");
    const std::string path = m_directory.file("missing/drawing.dxf");
    EXPECT_FALSE(writer.save(path));
    EXPECT_EQ(writer.whyNotOpened(), cannotOpen(path).text);
    EXPECT_TRUE(writer.save(m_path));
    EXPECT_EQ(writer.whyNotOpened(), "");
}

TEST_F(DXFWriterTest, UmaskThatTakesTheOwnersPermissionsAwayDoesNoHarm) {
    chmod(m_directory.path().c_str(), 0777);
    const int status = inChildProcess([&] {
        // The administrator may write whatever the permissions say.
        if (geteuid() == 0 && setuid(nobody) != 0) {
            return notPermitted;
        }
        umask(0777);
        return DXFWriter(m_document).save(m_path) ? 0 : 1;
    });
    if (status == notPermitted) {
        GTEST_SKIP() << "no permission to become another user";
    }
    EXPECT_EQ(status, 0);
    chmod(m_path.c_str(), 0600);
    EXPECT_EQ(contentOf(m_path), fileStart + layerTable(1) + layerZero + entitiesStart + fileEnd);
}

TEST_F(DXFWriterTest, NewFilesHaveThePermissionsThatTheUmaskLeaves) {
    for (const mode_t mask : {0000U, 0022U, 0077U}) {
        const int status = inChildProcess([&] {
            umask(mask);
            return DXFWriter(m_document).save(m_path) ? 0 : 1;
        });
        EXPECT_EQ(status, 0);
        EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(m_path).permissions()),
                  0666U & ~mask);
        std::filesystem::remove(m_path);
    }
}

TEST_F(DXFWriterTest, SaveToWritesFromWhereAnOpenFileStands) {
    writeContent(m_path, "before ");
    const int file = open(m_path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    ASSERT_GE(file, 0);
    DXFWriter writer(m_document);
    EXPECT_TRUE(writer.saveTo(file, "somewhere"));
    const std::string drawing = fileStart + layerTable(1) + layerZero + entitiesStart + fileEnd;
    EXPECT_EQ(contentOf(m_path), "before " + drawing);
    ASSERT_EQ(write(file, "after", 5), 5) << "it is the caller's still";
    close(file);
    EXPECT_EQ(contentOf(m_path), "before " + drawing + "after");
}

TEST_F(DXFWriterTest, SaveToNamesTheFileThatIsNotOpenAsItIsTold) {
    const CapturedLog log;
    EXPECT_FALSE(DXFWriter(m_document).saveTo(-1, "somewhere"));
    EXPECT_EQ(log.messages(), std::vector<LogMessage>{cannotOpen("somewhere")});
}

TEST_F(DXFWriterTest, NothingIsPrintedOnStandardErrorWhateverTheLayersHold) {
    m_document.addLayer(layerNamed("", 0, 256));
    for (const int color : {0, 255, 256, 257, std::numeric_limits<int>::max(), -1}) {
        m_document.addLayer(layerNamed("color" + std::to_string(color), 0, color));
    }
    testing::internal::CaptureStderr();
    const std::string text = saved();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    const auto layer = [](const std::string& name, const std::string& color) {
        return "  0\nLAYER\n  2\n" + name + "\n 70\n0\n 62\n" + color + "\n  6\nCONTINUOUS\n";
    };
    EXPECT_THAT(text, testing::HasSubstr(layerTable(8) + layerZero + layer("color0", "0") +
                                         layer("color255", "255") + layer("color256", "7") +
                                         layer("color257", "7") + layer("color2147483647", "7") +
                                         layer("color-1", "-1")));
}

TEST_F(DXFWriterTest, OneWriterSavesAgainAndAgain) {
    m_document.addEntity(onLayer<DXFPoint>("a", 1, 1.0, 0.0, 0.0));
    DXFWriter writer(m_document);
    ASSERT_TRUE(writer.save(m_path));
    const std::string first = contentOf(m_path);
    const std::string other = m_directory.file("other.dxf");
    ASSERT_TRUE(writer.save(other));
    EXPECT_EQ(contentOf(other), first);
    m_document.addEntity(onLayer<DXFPoint>("a", 1, 2.0, 0.0, 0.0));
    ASSERT_TRUE(writer.save(m_path));
    EXPECT_NE(contentOf(m_path).find(pointText("a", 1, "2.0") + fileEnd), std::string::npos);
    EXPECT_FALSE(writer.save(m_directory.file("missing/drawing.dxf")));
    EXPECT_TRUE(writer.save(m_path));
}

TEST_F(DXFWriterTest, ShorterDrawingReplacesALongerFile) {
    writeContent(m_path, std::string(100'000, 'x'));
    EXPECT_EQ(saved(), fileStart + layerTable(1) + layerZero + entitiesStart + fileEnd);
}

TEST_F(DXFWriterTest, SaveToThePathOfTheUnfinishedFileGivesTheWholeDrawing) {
    const auto circle = std::make_shared<DXFCircle>(cv::Point3_<double>(0.0, 0.0, 0.0), 1.0);
    m_document.addEntity(circle);
    DXFWriter writer(m_document);
    EXPECT_FALSE(writer.save(m_path));
    writer.writeAPPID_table(); // still held by the writer when it saves again
    m_document.deleteEntity(circle);
    EXPECT_TRUE(writer.save(m_path));
    EXPECT_EQ(contentOf(m_path), fileStart + layerTable(1) + layerZero + entitiesStart + fileEnd);
}

TEST_F(DXFWriterTest, OperationsGoOnInAnUnfinishedFile) {
    m_document.addEntity(nullptr);
    const std::string start = fileStart + layerTable(1) + layerZero + entitiesStart;
    {
        DXFWriter writer(m_document);
        EXPECT_FALSE(writer.save(m_path));
        EXPECT_EQ(contentOf(m_path), start);
        EXPECT_TRUE(writer.fillEntities(onLayer<DXFPoint>("a", 1, 1.0, 0.0, 0.0)));
        writer.writeAPPID_table();
    }
    EXPECT_EQ(contentOf(m_path),
              start + pointText("a", 1, "1.0") +
                  "  0\nTABLE\n  2\nAPPID\n 70\n1\n  0\nAPPID\n  2\nACAD\n 70\n0\n  0\nENDTAB\n");
}

TEST_F(DXFWriterTest, VportTableIsDxflibs) {
    m_document.addEntity(nullptr);
    {
        DXFWriter writer(m_document);
        EXPECT_FALSE(writer.save(m_path));
        writer.writeVPORT_table();
    }
    const std::string reference = m_directory.file("reference.dxf");
    DL_Dxf engine;
    const std::unique_ptr<DL_WriterA> file(engine.out(reference.c_str(), DL_Codes::AC1009));
    engine.writeVPort(*file);
    file->close();
    EXPECT_EQ(contentOf(m_path),
              fileStart + layerTable(1) + layerZero + entitiesStart + contentOf(reference));
}

TEST_F(DXFWriterTest, OperationsWithoutAnOpenFileWriteNothing) {
    const auto point = std::make_shared<DXFPoint>(1.0, 0.0, 0.0);
    m_document.addEntity(point);
    DXFWriter writer(m_document);
    const auto callAll = [&] {
        writer.writeHeader();
        writer.writeLineType_table();
        writer.writeLAYER_table();
        EXPECT_FALSE(writer.writeEntities_section());
        EXPECT_FALSE(writer.fillEntities(point));
        writer.writeVPORT_table();
        writer.writeAPPID_table();
        const CapturedLog log;
        EXPECT_FALSE(writer.fillEntities(nullptr));
        EXPECT_EQ(log.messages(), std::vector<LogMessage>{unsupportedEntity});
    };
    callAll();
    EXPECT_EQ(point->attributes(), nullptr);
    ASSERT_TRUE(writer.save(m_path));
    const std::string text = contentOf(m_path);
    callAll();
    EXPECT_FALSE(writer.save(m_directory.file("missing/drawing.dxf")));
    callAll();
    EXPECT_EQ(contentOf(m_path), text);
}

TEST_F(DXFWriterTest, LocalesChangeNothing) {
    m_document.addLayer(layerNamed("a", 1009, -12345));
    m_document.addEntity(onLayer<DXFPoint>("a", 123456, 1234567.5, 0.0, 0.0));
    m_document.addEntity(polylineOf(1009, {DXFVertex(1234567.5, 0.25, 0.0, true, 0.0)}));
    const std::string expected = saved();
    EXPECT_NE(expected.find("\n 62\n123456\n 10\n1234567.5\n"), std::string::npos);
    for (const char groupSize : {char{1}, char{2}, char{3}}) {
        const CommaLocale commas(groupSize);
        EXPECT_EQ(saved(), expected);
    }
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "tr_TR.UTF-8"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) {
            EXPECT_EQ(saved(), expected);
        }
    }
    std::setlocale(LC_ALL, "C");
}

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

TEST_F(DXFWriterTest, FilesAreClosed) {
    const std::ptrdiff_t before = openDescriptors();
    {
        DXFWriter writer(m_document);
        EXPECT_TRUE(writer.save(m_path));
        EXPECT_EQ(openDescriptors(), before);
        EXPECT_FALSE(writer.save(m_directory.file("missing/drawing.dxf")));
        EXPECT_EQ(openDescriptors(), before);
        if (access("/dev/full", W_OK) == 0) {
            EXPECT_FALSE(writer.save("/dev/full"));
        }
        EXPECT_EQ(openDescriptors(), before);
        m_document.addEntity(nullptr);
        EXPECT_FALSE(writer.save(m_path));
        EXPECT_FALSE(writer.save(m_path));
        EXPECT_EQ(openDescriptors(), before + 1) << "the unfinished file";
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(DXFWriterTest, DrawingReachesThePipeOfAReader) {
    ASSERT_EQ(mkfifo(m_path.c_str(), 0600), 0);
    auto read = std::async(std::launch::async, [&] { return contentOf(m_path); });
    EXPECT_TRUE(DXFWriter(m_document).save(m_path));
    EXPECT_EQ(read.get(), fileStart + layerTable(1) + layerZero + entitiesStart + fileEnd);
}

TEST_F(DXFWriterTest, FullDeviceGivesFalse) {
    if (access("/dev/full", W_OK) != 0) {
        GTEST_SKIP() << "/dev/full cannot be written";
    }
    DXFWriter writer(m_document);
    const CapturedLog log;
    EXPECT_FALSE(writer.save("/dev/full"));
    EXPECT_TRUE(log.messages().empty());
    EXPECT_FALSE(writer.writeEntities_section()) << "the file is closed";
    EXPECT_TRUE(writer.save(m_path));
}

TEST_F(DXFWriterTest, FileSizeLimitGivesFalseForEveryLengthThatDoesNotFit) {
    m_document.addEntity(
        onLayer<DXFPointVector>("a", 1, std::vector<cv::Point3_<double>>(6000, {1.0, 2.0, 3.0})));
    const std::size_t length = saved().size();
    ASSERT_GT(length, std::size_t{1} << 18) << "more than one block";
    for (const std::size_t limit :
         {std::size_t{0}, std::size_t{1}, std::size_t{1} << 18, length - 1, length}) {
        const int status = inChildProcess([&] {
            const rlimit limits = {limit, limit};
            signal(SIGXFSZ, SIG_IGN);
            setrlimit(RLIMIT_FSIZE, &limits);
            DXFWriter writer(m_document);
            return writer.save(m_path) ? 1 : 0;
        });
        EXPECT_EQ(status, limit < length ? 0 : 1) << limit;
        EXPECT_EQ(contentOf(m_path).size(), limit);
    }
}

TEST_F(DXFWriterTest, FillEntitiesReportsLostBytes) {
    if (access("/dev/full", W_OK) != 0) {
        GTEST_SKIP() << "/dev/full cannot be written";
    }
    // Several blocks: the first of them is lost before the last entity.
    m_document.addEntity(
        onLayer<DXFPointVector>("a", 1, std::vector<cv::Point3_<double>>(20'000, {1.0, 2.0, 3.0})));
    m_document.addEntity(nullptr);
    const CapturedLog log;
    EXPECT_FALSE(DXFWriter(m_document).save("/dev/full"));
    EXPECT_TRUE(log.messages().empty()) << "it ends before the unsupported entity";
}

/// Collects what dxflib reads.
class Collector : public DL_CreationAdapter {
public:
    void addLayer(const DL_LayerData& data) override { layers.push_back(data.name); }
    void addPoint(const DL_PointData& data) override {
        points.emplace_back(data.x, data.y, data.z);
        pointLayers.push_back(getAttributes().getLayer());
    }
    void addPolyline(const DL_PolylineData& data) override { polylineFlags.push_back(data.flags); }
    void addVertex(const DL_VertexData& data) override { vertices.push_back(data); }

    std::vector<std::string> layers;
    std::vector<std::string> pointLayers;
    std::vector<cv::Point3_<double>> points;
    std::vector<int> polylineFlags;
    std::vector<DL_VertexData> vertices;
};

TEST_F(DXFWriterTest, DxflibReadsBackWhatWasWritten) {
    m_document.addLayer(layerNamed("walls", 4, 1));
    const std::vector<cv::Point3_<double>> points = {{1.5, -2.0, 0.25}, {1e10, 1e-10, -7.0}};
    m_document.addEntity(onLayer<DXFPointVector>("walls", 3, points));
    m_document.addEntity(
        polylineOf(1, {DXFVertex(0.0, 0.0, 0.0, true, 0.0), DXFVertex(10.0, 0.5, 3.0, true, 0.5),
                       DXFVertex(10.0, 5.25, 2.0, true, -1.0)}));
    m_document.addEntity(polylineOf(0, {DXFVertex(-1.0, -2.0, 0.0, true, 0.0)}));
    saved();

    Collector collector;
    DL_Dxf reader;
    ASSERT_TRUE(reader.in(m_path, &collector));
    EXPECT_EQ(collector.layers, (std::vector<std::string>{"0", "walls"}));
    EXPECT_EQ(collector.points, points);
    EXPECT_EQ(collector.pointLayers, (std::vector<std::string>{"walls", "walls"}));
    EXPECT_EQ(collector.polylineFlags, (std::vector<int>{1, 0}));
    ASSERT_EQ(collector.vertices.size(), 4U);
    const DXFVertex expected[] = {
        DXFVertex(0.0, 0.0, 0.0, true, 0.0), DXFVertex(10.0, 0.5, 3.0, true, 0.5),
        DXFVertex(10.0, 5.25, 2.0, true, -1.0), DXFVertex(-1.0, -2.0, 0.0, true, 0.0)};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(collector.vertices[i].x, expected[i].x());
        EXPECT_EQ(collector.vertices[i].y, expected[i].y());
        EXPECT_EQ(collector.vertices[i].z, expected[i].z());
        EXPECT_EQ(collector.vertices[i].bulge, expected[i].bulge());
    }
}

} // namespace
