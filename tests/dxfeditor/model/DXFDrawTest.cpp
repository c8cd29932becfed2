#include "dxfeditor/DXFDraw.h"

#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPolyline.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/TemporaryDirectory.h"

#include <dxflib/dl_creationadapter.h>
#include <dxflib/dl_dxf.h>
#include <gtest/gtest.h>
#include <opencv2/core/types.hpp>

#include <type_traits>
#include <typeinfo>

namespace {

static_assert(!std::is_copy_constructible_v<DXFDraw> && !std::is_move_constructible_v<DXFDraw> &&
                  !std::is_polymorphic_v<DXFDraw>,
              "the writer refers to the document beside it");

/// The polylines of a file: flags, layer and corners.
class Polylines : public DL_CreationAdapter {
public:
    void addLayer(const DL_LayerData& data) override { layers.push_back(data.name); }
    void addPolyline(const DL_PolylineData& data) override {
        flags.push_back(data.flags);
        layersOfPolylines.push_back(getAttributes().getLayer());
    }
    void addVertex(const DL_VertexData& data) override {
        corners.emplace_back(data.x, data.y, data.z);
        EXPECT_EQ(data.bulge, 0.0);
    }

    std::vector<std::string> layers;
    std::vector<int> flags;
    std::vector<std::string> layersOfPolylines;
    std::vector<cv::Point3_<double>> corners;
};

Polylines polylinesIn(const std::string& path) {
    Polylines found;
    EXPECT_TRUE(DL_Dxf().in(path, &found));
    return found;
}

const std::vector<cv::Point3_<double>> rectangle = {
    {1.5, 1.0, 0.0}, {10.0, 1.0, 0.0}, {10.0, 10.0, 0.0}, {1.5, 10.0, 0.0}};

std::vector<cv::Point3_<double>> repeated(const std::vector<cv::Point3_<double>>& points,
                                          int times) {
    std::vector<cv::Point3_<double>> all;
    for (int i = 0; i < times; ++i) {
        all.insert(all.end(), points.begin(), points.end());
    }
    return all;
}

void expectAttributes(const std::shared_ptr<DXFAttributes>& attributes, int width) {
    ASSERT_NE(attributes, nullptr);
    EXPECT_EQ(attributes->layerName(), "1");
    EXPECT_EQ(attributes->color(), 7);
    EXPECT_EQ(attributes->color24(), 7);
    EXPECT_EQ(attributes->width(), width);
    EXPECT_EQ(attributes->lineType(), "CONTINUOUS");
    EXPECT_EQ(attributes->lineTypeScale(), 1.0);
    EXPECT_EQ(attributes->handle(), -1);
    EXPECT_FALSE(attributes->inPaperSpace());
}

class DXFDrawTest : public ::testing::Test {
protected:
    TemporaryDirectory m_directory;
    std::string m_path = m_directory.file("drawing.dxf");
    DXFDraw m_draw{m_path};
};

TEST_F(DXFDrawTest, NewBuilderIsEmpty) {
    EXPECT_EQ(m_draw.path, m_path);
    EXPECT_TRUE(m_draw.document.layers().empty());
    EXPECT_TRUE(m_draw.document.entities().empty());
    EXPECT_EQ(m_draw.layer, nullptr);
    EXPECT_TRUE(m_draw.entities.empty());
    EXPECT_FALSE(std::filesystem::exists(m_path));
}

TEST_F(DXFDrawTest, MembersAreOpenToCallers) {
    const auto& [path, document, layer, entities, writer] = m_draw;
    EXPECT_EQ(&path, &m_draw.path);
    EXPECT_EQ(&document, &m_draw.document);
    EXPECT_EQ(&layer, &m_draw.layer);
    EXPECT_EQ(&entities, &m_draw.entities);
    EXPECT_EQ(&writer, &m_draw.writer);

    const auto point = std::make_shared<DXFPoint>(1.0, 2.0, 3.0);
    m_draw.document.addEntity(point);
    EXPECT_TRUE(m_draw.writer.save(m_path)) << "the writer writes this document";
    EXPECT_NE(contentOf(m_path).find("POINT"), std::string::npos);
    m_draw.entities.push_back(point);
    m_draw.clean();
    EXPECT_TRUE(m_draw.document.entities().empty());
}

TEST_F(DXFDrawTest, SetupMakesLayerOne) {
    EXPECT_TRUE(m_draw.setupFile());
    ASSERT_NE(m_draw.layer, nullptr);
    EXPECT_EQ(m_draw.layer->name(), "1");
    EXPECT_EQ(m_draw.layer->flags(), 0);
    expectAttributes(m_draw.layer->attributes(), -1);
    EXPECT_EQ(m_draw.document.getLayer("1"), m_draw.layer);
}

TEST_F(DXFDrawTest, SecondSetupMakesALayerThatTheDocumentRefuses) {
    m_draw.setupFile();
    const std::shared_ptr<DXFLayer> first = m_draw.layer;
    EXPECT_FALSE(m_draw.setupFile());
    EXPECT_NE(m_draw.layer, first);
    EXPECT_EQ(m_draw.document.getLayer("1"), first);
    EXPECT_EQ(m_draw.document.layers().size(), 1U);
}

TEST_F(DXFDrawTest, CreatedEntityIsAnOpenPolylineOutsideTheDocument) {
    m_draw.createEntity();
    ASSERT_EQ(m_draw.entities.size(), 1U);
    const auto polyline = std::dynamic_pointer_cast<DXFPolyline>(m_draw.entities[0]);
    ASSERT_NE(polyline, nullptr);
    EXPECT_FALSE(polyline->isClosed());
    EXPECT_EQ(polyline->vertexNumber(), 0);
    EXPECT_EQ(polyline->mVertices(), 7U);
    EXPECT_EQ(polyline->nVertices(), 7U);
    EXPECT_EQ(polyline->flags(), 0U);
    expectAttributes(polyline->attributes(), 10);
    EXPECT_TRUE(m_draw.document.entities().empty());
}

TEST_F(DXFDrawTest, DrawPolyOnAFreshBuilderWritesOneClosedRectangle) {
    m_draw.setupFile();
    EXPECT_TRUE(m_draw.drawPoly());
    const Polylines found = polylinesIn(m_path);
    EXPECT_EQ(found.flags, std::vector<int>{1});
    EXPECT_EQ(found.corners, rectangle);
    EXPECT_EQ(found.layers, (std::vector<std::string>{"0", "1"}));

    const auto polyline = std::dynamic_pointer_cast<DXFPolyline>(m_draw.entities.at(0));
    EXPECT_EQ(polyline->mVertices(), 7U);
    EXPECT_EQ(polyline->nVertices(), 7U);
    EXPECT_EQ(polyline->segments().size(), 4U);
    EXPECT_TRUE(polyline->vertices()[0].flag());
    EXPECT_EQ(m_draw.document.entities().front(), polyline);
}

TEST_F(DXFDrawTest, PolylineOfDrawPolyHasNoAttributesButThoseOfTheAddedLayerZero) {
    m_draw.setupFile();
    m_draw.document.addLayer(std::make_shared<DXFLayer>("0", 0));
    EXPECT_TRUE(m_draw.drawPoly());
    EXPECT_EQ(m_draw.entities.at(0)->attributes(), nullptr);

    DXFDraw other(m_path);
    other.setupFile();
    EXPECT_TRUE(other.drawPoly());
    ASSERT_NE(other.entities.at(0)->attributes(), nullptr);
    EXPECT_EQ(other.entities.at(0)->attributes()->layerName(), "0");
}

TEST_F(DXFDrawTest, DrawPolyDrawsIntoTheCreatedPolyline) {
    m_draw.setupFile();
    m_draw.createEntity();
    m_draw.createEntity();
    const std::shared_ptr<DXFEntity> last = m_draw.entities[1];
    EXPECT_TRUE(m_draw.drawPoly());
    ASSERT_EQ(m_draw.entities.size(), 2U);
    EXPECT_EQ(m_draw.document.entities(), std::list<std::shared_ptr<DXFEntity>>{last});
    expectAttributes(last->attributes(), 10);
    const Polylines found = polylinesIn(m_path);
    EXPECT_EQ(found.flags, std::vector<int>{0});
    EXPECT_EQ(found.corners, rectangle);
    EXPECT_EQ(found.layersOfPolylines, std::vector<std::string>{"1"});
}

TEST_F(DXFDrawTest, DrawPolyTwiceListsAPolylineOfEightCornersTwice) {
    m_draw.setupFile();
    EXPECT_TRUE(m_draw.drawPoly());
    EXPECT_TRUE(m_draw.drawPoly());
    EXPECT_EQ(m_draw.entities.size(), 1U);
    const std::list<std::shared_ptr<DXFEntity>> expected(2, m_draw.entities[0]);
    EXPECT_EQ(m_draw.document.entities(), expected);
    const Polylines found = polylinesIn(m_path);
    EXPECT_EQ(found.flags, (std::vector<int>{1, 1}));
    EXPECT_EQ(found.corners, repeated(rectangle, 4));
}

TEST_F(DXFDrawTest, CleanTakesTheEntitiesOutOfTheDocumentAlone) {
    m_draw.setupFile();
    m_draw.drawPoly();
    m_draw.drawPoly();
    const auto other = std::make_shared<DXFPoint>(1.0, 2.0, 3.0);
    m_draw.document.addEntity(other);
    m_draw.clean();
    EXPECT_EQ(m_draw.entities.size(), 1U);
    EXPECT_EQ(m_draw.document.entities(), std::list<std::shared_ptr<DXFEntity>>{other});
    EXPECT_TRUE(m_draw.saveFile());
    EXPECT_TRUE(polylinesIn(m_path).flags.empty());

    EXPECT_TRUE(m_draw.drawPoly()) << "the builder draws into its polyline again";
    EXPECT_EQ(polylinesIn(m_path).corners, repeated(rectangle, 3));
}

TEST_F(DXFDrawTest, SetPathChangesTheFileWritten) {
    const std::string other = m_directory.file("other.dxf");
    m_draw.setPath(other);
    EXPECT_TRUE(m_draw.saveFile());
    EXPECT_TRUE(std::filesystem::exists(other));
    EXPECT_FALSE(std::filesystem::exists(m_path));
    m_draw.setPath(m_path);
    EXPECT_TRUE(m_draw.drawPoly());
    EXPECT_EQ(polylinesIn(m_path).corners, rectangle);
    EXPECT_TRUE(polylinesIn(other).corners.empty());
}

TEST_F(DXFDrawTest, LastEntityThatIsNoPolylineThrows) {
    m_draw.entities = {std::make_shared<DXFPolyline>(0U, 0U, 0U),
                       std::make_shared<DXFPoint>(1.0, 2.0, 3.0)};
    EXPECT_THROW(m_draw.drawPoly(), std::bad_cast);
    m_draw.entities = {nullptr};
    EXPECT_THROW(m_draw.drawPoly(), std::bad_cast);
    EXPECT_TRUE(m_draw.document.entities().empty());
    EXPECT_FALSE(std::filesystem::exists(m_path));
}

TEST_F(DXFDrawTest, FailedSaveIsPassedOn) {
    const std::string missing = m_directory.file("missing/drawing.dxf");
    m_draw.setPath(missing);
    const CapturedLog log;
    EXPECT_FALSE(m_draw.saveFile());
    EXPECT_FALSE(m_draw.drawPoly());
    const LogMessage message = {0, "dxfeditor/DXFWriter", "save",
                                "DXFWriter: Cannot open " + missing + " for writing."};
    EXPECT_EQ(log.messages(), (std::vector<LogMessage>{message, message}));
}

} // namespace
