// Every public function with an allocation that fails, for each allocation that it makes, alone and
// with all after it.
#include "converters/Converters.h"
#include "converters/PathReader.h"
#include "converters/PlySerializerDeserializer.h"
#include "dxfeditor/DXFAdapter.h"
#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFDraw.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFLineType.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFReader.h"
#include "dxfeditor/DXFSpline.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/FailEachAllocation.h"
#include "tests/support/FailingAllocator.h"
#include "tests/support/HostilePathDrawings.h"
#include "tests/support/Pieces.h"
#include "tests/support/PlyBytes.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <sstream>

namespace {

using Bytes = std::vector<unsigned char>;
using Points = std::vector<cv::Point3_<double>>;
using Cloud = pcl::PointCloud<pcl::PointXYZI>;

/// Longer than what a std::string holds in itself.
const char* const longName = "a name that does not fit into the string object itself";

Cloud smallCloud() {
    Cloud cloud;
    for (int i = 0; i < 5; ++i) {
        pcl::PointXYZI point;
        point.x = static_cast<float>(i);
        point.y = 0.5F;
        point.z = -1e30F;
        point.intensity = 255.0F;
        cloud.push_back(point);
    }
    return cloud;
}

Points smallPoints() {
    return {{1.0, 2.0, 3.0}, {-0.25, 1e300, 4.0}, {0.1, 0.2, 0.3}};
}

std::string smallDrawing() {
    const std::string entities =
        "0\nPOINT\n10\n9\n0\nPOINT\n10\n5\n20\n7\n0\nPOINT\n10\n6\n"
        "0\nLINE\n8\n" +
        std::string(longName) +
        "\n10\n0\n20\n0\n11\n1\n21\n1\n"
        "0\nCIRCLE\n40\n1\n0\nARC\n40\n1\n50\n0\n51\n90\n"
        "0\nLWPOLYLINE\n90\n2\n10\n1\n20\n1\n10\n2\n20\n3\n"
        "0\nPOLYLINE\n66\n1\n0\nVERTEX\n10\n1\n0\nVERTEX\n10\n2\n0\nSEQEND\n"
        "0\nSPLINE\n71\n1\n72\n4\n73\n2\n74\n1\n40\n0\n40\n0\n40\n1\n40\n1\n10\n0\n20\n0\n10\n1\n"
        "20\n1\n11\n5\n21\n5\n"
        // Not plain: dxflib decodes these. Its arrays have to grow.
        "0\nSPLINE\n71\n1\n72\n5\n73\n3\n74\n2\n40\n0\n40\n0\n40\n0.5\n40\n1\n40\n1\n10\n0\n"
        "10\n1\n10\n2\n11\n5\n11\n6\n"
        "0\nLWPOLYLINE\n90\n2\n10\n+1\n20\n1\n10\n2\n20\n3\n"
        "0\nLWPOLYLINE\n90\n3\n10\n+1\n20\n1\n10\n2\n20\n3\n10\n5\n"
        "0\nPOINT\n10\n+1.5\n0\nLINE\n11\n+2\n0\nTEXT\n1\nskipped\n"
        "0\nBLOCK\n2\nb\n0\nPOINT\n10\n1\n0\nENDBLK\n";
    return "0\nSECTION\n2\nTABLES\n0\nLTYPE\n2\n" + std::string(longName) +
           "\n70\n0\n73\n2\n49\n0.5\n49\n-0.5\n0\nLAYER\n2\n" + longName +
           "\n70\n0\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
}

std::vector<char> bytesOfDrawing() {
    const std::string text = smallDrawing();
    return {text.begin(), text.end()};
}

/// What a call makes when nothing fails, made once.
template <typename Make>
const auto& expected(Make make) {
    static const auto value = make();
    return value;
}

struct BinaryPly {
    Cloud cloud = smallCloud();
    Bytes out;
    bool call() { return converters::toPlyBinary(cloud, out); }
    bool isComplete() const {
        return out == expected([this] {
                   Bytes file;
                   converters::toPlyBinary(cloud, file);
                   return file;
               });
    }
    bool isAfterFailure() const { return true; } // incomplete, as documented
};

struct AsciiPly {
    Cloud cloud = smallCloud();
    Bytes out;
    bool call() { return converters::toPlyAscii(cloud, out); }
    bool isComplete() const {
        return out == expected([this] {
                   Bytes file;
                   converters::toPlyAscii(cloud, file);
                   return file;
               });
    }
    bool isAfterFailure() const { return true; } // incomplete, as documented
};

/// An empty cloud, whose header goes in front of what there is.
struct EmptyPly {
    Bytes out = bytesOf("old");
    bool call() { return !converters::toPlyBinary(Cloud(), out); }
    bool isComplete() const { return out.size() > 3 && out.back() == 'd' && out.front() == 'p'; }
    bool isAfterFailure() const { return out == bytesOf("old"); }
};

template <bool (*write)(const Cloud&, Bytes&)>
struct PlyRead {
    Bytes file = [] {
        Bytes bytes;
        write(smallCloud(), bytes);
        return bytes;
    }();
    Cloud cloud = [] {
        Cloud old;
        old.resize(2);
        old.header.frame_id = longName;
        return old;
    }();
    bool call() { return converters::fromPly(file, cloud).success; }
    bool isComplete() const { return cloud.size() == 5 && cloud[4].x == 4.0F && cloud.width == 5; }
    bool isAfterFailure() const {
        return cloud.size() == 2 && cloud.width == 2 && cloud.header.frame_id == longName;
    }
};

/// Reading that goes on to messages.
struct RefusedPly {
    Bytes file;
    Cloud cloud;
    RefusedPly() {
        const std::string text = std::string("ply\n") + longName +
                                 "\nformat ascii 1.0\nobj_info num_cols 1\nobj_info num_rows 1\n"
                                 "element vertex 1\nproperty float x\nend_header\n";
        file.assign(text.begin(), text.end());
        cloud.resize(2);
    }
    bool call() { return !converters::fromPly(file, cloud).success; }
    bool isComplete() const { return cloud.size() == 2; }
    bool isAfterFailure() const { return cloud.size() == 2; }
};

struct PlySteps {
    Bytes file = [] {
        Bytes bytes;
        converters::toPlyAscii(smallCloud(), bytes);
        return bytes;
    }();
    PLYDeserializer reader;
    bool call() {
        reader.Init();
        std::istringstream line("12.5");
        return !reader.IsVertexCountZero(file) && reader.ReadHeader(file) &&
               reader.ReadData(file) && reader.ParseVertices(7, line);
    }
    bool isComplete() const { return reader.cloud->data.size() == 80; }
    bool isAfterFailure() const { return true; } // members hold what was read so far
};

struct PlyBodies {
    pcl::PCLPointCloud2 cloud = [] {
        pcl::PCLPointCloud2 result;
        pcl::toPCLPointCloud2(smallCloud(), result);
        result.fields[1].count = 2;
        result.fields[2].name = longName;
        return result;
    }();
    std::string header;
    Bytes binary;
    std::ostringstream ascii;
    bool call() {
        const PLYSerializer serializer;
        header = serializer.GenerateHeader(cloud, true);
        serializer.AppendContentBinary(cloud, binary);
        serializer.WriteDataASCII(cloud, ascii);
        // That is how a stream says that it has no memory.
        if (!ascii) {
            throw std::bad_alloc();
        }
        return true;
    }
    bool isComplete() const {
        return header.find(longName) != std::string::npos && binary.size() == 80 &&
               ascii.str().size() > 50 && ascii.str().back() == '\n';
    }
    bool isAfterFailure() const { return true; }
};

struct DxfToPoints {
    std::vector<char> data = bytesOfDrawing();
    Points points = {{7.0, 7.0, 7.0}};
    bool call() { return converters::fromDxf(data, points); }
    bool isComplete() const {
        return points == expected([this] {
                   Points walk;
                   converters::fromDxf(data, walk);
                   return walk;
               });
    }
    bool isAfterFailure() const { return points == Points{{7.0, 7.0, 7.0}}; }
};

struct DxfToCloud {
    std::vector<char> data = bytesOfDrawing();
    pcl::PointCloud<pcl::PointXYZ> cloud = [] {
        pcl::PointCloud<pcl::PointXYZ> old;
        old.resize(3);
        return old;
    }();
    bool call() { return converters::fromDxf(data, cloud); }
    bool isComplete() const { return cloud.size() > 100 && cloud.width == 0; }
    bool isAfterFailure() const { return cloud.size() == 3 && cloud.width == 3; }
};

/// The path of a drawing with every kind of entity, in an order that has to be searched for.
template <bool isBinary, bool isInPieces>
struct PathRead {
    std::string file =
        isBinary ? binaryDrawingOf(groupsOf(drawingOfEverything())) : drawingOfEverything();
    converters::DrawingPath path;
    PathRead() { path.points.assign(2, {1, 2, 3}); }
    static converters::PathOptions options() {
        converters::PathOptions options;
        options.order = converters::PathOrder::insideFirst;
        options.layers = {"*"};
        return options;
    }
    bool call() {
        return (isInPieces ? converters::readPath(piecesOf(file, 300), path, options(), file.size())
                           : converters::readPath(file.data(), file.size(), path, options()))
            .success;
    }
    bool isComplete() const {
        return path.points == expected([this] {
                   converters::DrawingPath whole;
                   converters::readPath(file.data(), file.size(), whole, options());
                   return whole.points;
               });
    }
    bool isAfterFailure() const { return path.points == Points(2, {1, 2, 3}); }
};

/// The same a few contours at a time.
struct PathReadInParts {
    std::string file = drawingOfEverything();
    converters::PathReader reader{file.data(), file.size()};
    converters::PathContours contours;
    std::uint64_t counted = 0;
    std::size_t points = 0;
    bool call() {
        converters::ReadResult result = reader.open();
        if (!result || !(result = reader.countPoints(counted))) {
            return false;
        }
        while ((result = reader.read(contours, 1)) && !contours.contours.empty()) {
            points += contours.points.size();
        }
        return result.success;
    }
    bool isComplete() const { return points == counted && points > 100; }
    bool isAfterFailure() const { return contours.contours.empty() && contours.points.empty(); }
};

/// A global locale that has to be changed for dxflib and changed back.
struct DxfInCommaLocale {
    CommaLocale commas;
    DxfToPoints drawing;
    bool call() { return drawing.call(); }
    bool isComplete() const { return drawing.isComplete() && isLocaleBack(); }
    bool isAfterFailure() const { return drawing.isAfterFailure() && isLocaleBack(); }
    static bool isLocaleBack() {
        return std::use_facet<std::numpunct<char>>(std::locale()).decimal_point() == ',';
    }
};

std::filesystem::path transientFile() {
    return converters::tmpDxfPath / ("tmp" + std::to_string(getpid()) + ".dxf");
}

/// The file that could not be read back stays. That it cannot be opened is reported as false.
struct PointsToDxf {
    Points points = smallPoints();
    Bytes out = Bytes(3, 1);
    bool mayFileStay = false;
    bool call() {
        const bool isMade = converters::toDxf(points, out);
        mayFileStay = !isMade;
        return isMade;
    }
    bool isComplete() const {
        return isFileGone() && out == expected([this] {
                                   Bytes file;
                                   converters::toDxf(points, file);
                                   return file;
                               });
    }
    bool isAfterFailure() const { return out.empty() && (mayFileStay || isFileGone()); }
    static bool isFileGone() { return !std::filesystem::exists(transientFile()); }
};

struct CloudToDxf {
    pcl::PointCloud<pcl::PointXYZ> cloud = [] {
        pcl::PointCloud<pcl::PointXYZ> points;
        points.push_back({1.0F, 2.0F, 3.0F});
        return points;
    }();
    Bytes out = Bytes(3, 1);
    bool call() { return converters::toDxf(cloud, out); }
    bool isComplete() const { return out.size() > 100 && PointsToDxf::isFileGone(); }
    bool isAfterFailure() const { return out.empty(); }
};

struct FileRead {
    TemporaryDirectory directory;
    std::string path = directory.file("a file of some bytes");
    Bytes out = Bytes(1, 9);
    FileRead() { writeContent(path, longName); }
    bool call() { return converters::from_file(path, out); }
    bool isComplete() const { return std::string(out.begin(), out.end()) == longName; }
    bool isAfterFailure() const { return out.empty(); }
};

struct DocumentRead {
    TemporaryDirectory directory;
    std::string path = directory.file("drawing.dxf");
    std::shared_ptr<DXFDocument> document;
    DocumentRead() { writeContent(path, smallDrawing()); }
    bool call() {
        document = DXFDocument::load(path);
        return document != nullptr;
    }
    bool isComplete() const { return document->entities().size() == 12; }
    bool isAfterFailure() const { return document == nullptr; }
};

/// A document that is built by hand: when a call fails, the document is as it was before the call.
struct DocumentBuilt {
    DXFDocument document;
    std::shared_ptr<DXFLine> line =
        std::make_shared<DXFLine>(cv::Point3_<double>(0, 0, 0), cv::Point3_<double>(1, 1, 0));
    std::shared_ptr<DXFLayer> layer = std::make_shared<DXFLayer>(longName, 0);
    std::shared_ptr<DXFLineType> lineType =
        std::make_shared<DXFLineType>(longName, "", 0, 0, 0.0, nullptr);
    bool call() {
        const bool isNew = document.addLayer(layer) && document.addLineType(lineType);
        document.addEntity(line);
        document.addEntity(line);
        document.deleteEntity(line);
        document.addEntity(line);
        document.setup();
        std::vector<DXFContour> contours;
        return isNew && document.getLayer(longName) == layer &&
               document.getPoints().size() == document.getPoints(contours).size() &&
               contours.size() == 1;
    }
    bool isComplete() const { return isConsistent() && document.entities().size() == 1; }
    bool isAfterFailure() const { return isConsistent(); }
    bool isConsistent() const {
        return document.layers().size() == (document.getLayer(longName) ? 1U : 0U);
    }
};

/// Deleting succeeds without memory.
struct EntityDeleted {
    DXFDocument document;
    std::shared_ptr<DXFEntity> a = std::make_shared<DXFPoint>(1.0, 2.0, 3.0);
    std::shared_ptr<DXFEntity> b = std::make_shared<DXFPoint>(1.0, 2.0, 3.0);
    EntityDeleted() {
        for (const auto& entity : {a, b, std::shared_ptr<DXFEntity>(), a, b}) {
            document.addEntity(entity);
        }
    }
    bool call() { return document.deleteEntity(a); }
    bool isComplete() const {
        return document.entities() == std::list<std::shared_ptr<DXFEntity>>{b, nullptr, b};
    }
    bool isAfterFailure() const { return false; }
};

struct Entities {
    std::vector<std::unique_ptr<DXFEntity>> clones;
    bool call() {
        clones.clear();
        DXFPolyline polyline(0, 0, 1);
        polyline.setSegments({{0, 0, 1, 1}, {1, 1, 2, 2}});
        polyline.appendPoint(DXFVertex(5, 5, 5, true, 0));
        polyline.setup();
        DXFSpline spline(1, 0, 0, 0, 0);
        spline.appendControlPoint(0, 0, 0, 1);
        spline.appendControlPoint(1, 1, 0, 1);
        spline.appendFitPoint(0, 0, 0);
        for (const double knot : {0.0, 0.0, 1.0, 1.0}) {
            spline.appendKnot(knot);
        }
        spline.evaluate(0.5);
        DXFPointVector vector(smallPoints());
        vector.addPoint({1, 1, 1});
        vector.setAttributes(
            DXFAdapter::makeAttributes(DL_Attributes(longName, 1, 1, 1, longName, -1)));
        DXFAdapter::makeAttributes(vector.attributes());
        for (const DXFEntity* entity :
             {static_cast<const DXFEntity*>(&polyline), static_cast<const DXFEntity*>(&spline),
              static_cast<const DXFEntity*>(&vector)}) {
            clones.reserve(clones.size() + 1);
            clones.emplace_back(entity->clone());
        }
        return spline.sample(0.1).size() == 15 && vector.mV().size() == 4 &&
               polyline.segments().size() == 4;
    }
    bool isComplete() const { return clones.size() == 3; }
    bool isAfterFailure() const { return true; }
};

struct DrawingSaved {
    TemporaryDirectory directory;
    std::string path = directory.file("drawing.dxf");
    DXFDraw draw{path};
    DrawingSaved() {
        draw.setupFile();
        draw.document.addEntity(std::make_shared<DXFPoint>(1.0, 2.0, 3.0));
        draw.document.addEntity(std::make_shared<DXFPointVector>(smallPoints()));
        draw.createEntity();
    }
    bool call() { return draw.drawPoly() && draw.saveFile(); }
    bool isComplete() const {
        const std::string text = contentOf(path);
        return text.substr(text.size() - 8) == "  0\nEOF\n";
    }
    bool isAfterFailure() const { return true; } // the file is the caller's to remove
};

/// Which of three allocations fail, as "-" each, beginning with number `first`.
std::string failuresOfThree(std::size_t first, allocator::Failure failure) {
    std::string failures = "ooo";
    const allocator::Failing failing(first, failure);
    for (char& one : failures) {
        // Not one that the compiler may leave out.
        void* volatile const block = std::malloc(1);
        one = block == nullptr ? '-' : 'o';
        std::free(block);
    }
    return failures;
}

TEST(FailedAllocation, BeginsWithTheOneOfTheNumber) {
    using allocator::Failure;
    EXPECT_EQ(failuresOfThree(1, Failure::Once), "-oo");
    EXPECT_EQ(failuresOfThree(2, Failure::Once), "o-o");
    EXPECT_EQ(failuresOfThree(1, Failure::FromThenOn), "---");
    EXPECT_EQ(failuresOfThree(2, Failure::FromThenOn), "o--");
    EXPECT_EQ(failuresOfThree(4, Failure::FromThenOn), "ooo");
}

TEST(FailedAllocation, OfToPlyBinary) {
    failEachAllocation<BinaryPly>();
}

TEST(FailedAllocation, OfToPlyAscii) {
    failEachAllocation<AsciiPly>();
}

TEST(FailedAllocation, OfToPlyBinaryWithoutPointsKeepsTheOutput) {
    failEachAllocation<EmptyPly>();
}

TEST(FailedAllocation, OfFromPlyKeepsTheCloud) {
    failEachAllocation<PlyRead<converters::toPlyBinary>>();
    failEachAllocation<PlyRead<converters::toPlyAscii>>();
}

TEST(FailedAllocation, OfFromPlyThatRefuses) {
    failEachAllocation<RefusedPly>();
}

TEST(FailedAllocation, OfTheStepsOfThePlyReader) {
    failEachAllocation<PlySteps>();
}

TEST(FailedAllocation, OfTheBodiesOfAnyCloud) {
    failEachAllocation<PlyBodies>();
}

TEST(FailedAllocation, OfFromDxfKeepsThePoints) {
    failEachAllocation<DxfToPoints>({false, true});
}

TEST(FailedAllocation, OfFromDxfKeepsTheCloud) {
    failEachAllocation<DxfToCloud>({false, true});
}

TEST(FailedAllocation, OfFromDxfGivesTheLocaleBack) {
    failEachAllocation<DxfInCommaLocale>({false, true});
}

TEST(FailedAllocation, OfReadPathKeepsThePath) {
    failEachAllocation<PathRead<false, false>>();
    failEachAllocation<PathRead<true, false>>();
    failEachAllocation<PathRead<false, true>>();
    failEachAllocation<PathRead<true, true>>();
}

TEST(FailedAllocation, OfPathReaderLeavesNoContoursBehind) {
    failEachAllocation<PathReadInParts>();
}

TEST(FailedAllocation, OfToDxfLeavesNeitherOutputNorFile) {
    failEachAllocation<PointsToDxf>({true, true});
    failEachAllocation<CloudToDxf>({true, true});
}

TEST(FailedAllocation, OfFromFileLeavesNoOutput) {
    failEachAllocation<FileRead>({true, false});
}

TEST(FailedAllocation, OfDocumentLoadGivesNoDocument) {
    failEachAllocation<DocumentRead>({true, true});
}

TEST(FailedAllocation, LeavesADocumentConsistent) {
    failEachAllocation<DocumentBuilt>();
}

TEST(FailedAllocation, OfDeletingAnEntityDeletesIt) {
    failEachAllocation<EntityDeleted>();
}

TEST(FailedAllocation, OfEntities) {
    failEachAllocation<Entities>();
}

TEST(FailedAllocation, OfSavingADrawing) {
    failEachAllocation<DrawingSaved>({true, true});
}

} // namespace
