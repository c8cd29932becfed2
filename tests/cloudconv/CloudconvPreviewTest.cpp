// cloudconv preview: the pictures, and what happens when there can be none.

#include "tests/support/CloudconvFixture.h"
#include "tests/support/SimpleDrawing.h"

#include <cairo.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

const fs::path examples = fs::path(CONVERTERS_TEST_DIR) / "../examples";

constexpr std::uint32_t blue = 0x0072B2;
constexpr std::uint32_t vermillion = 0xD55E00;
constexpr std::uint32_t purple = 0xCC79A7;
constexpr std::uint32_t gapRed = 0xBF0033;
constexpr std::uint32_t ink = 0x212121;

/// A picture as pixels 0xRRGGBB.
struct Pixels {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> values;

    std::uint32_t at(int x, int y) const {
        return values.at(static_cast<std::size_t>(y * width + x));
    }
};

Pixels decoded(const fs::path& file) {
    const std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface(
        cairo_image_surface_create_from_png(file.c_str()), &cairo_surface_destroy);
    EXPECT_EQ(cairo_surface_status(surface.get()), CAIRO_STATUS_SUCCESS) << file;
    Pixels pixels;
    pixels.width = cairo_image_surface_get_width(surface.get());
    pixels.height = cairo_image_surface_get_height(surface.get());
    const unsigned char* const data = cairo_image_surface_get_data(surface.get());
    const int stride = cairo_image_surface_get_stride(surface.get());
    for (int y = 0; y < pixels.height; ++y) {
        const auto* const row = reinterpret_cast<const std::uint32_t*>(data + y * stride);
        for (int x = 0; x < pixels.width; ++x) {
            pixels.values.push_back(row[x] & 0xFFFFFFU);
        }
    }
    return pixels;
}

/// Where a colour is in the plot, which is left of the legend.
struct Extent {
    int left = 1 << 20;
    int right = -1;
    int top = 1 << 20;
    int bottom = -1;
    int count = 0;

    int width() const { return right - left; }
    int height() const { return bottom - top; }
};

constexpr int plotRight = 730;
constexpr std::uint32_t white = 0xFFFFFF;

/// How many pixels of the plot tell two pictures of a size apart.
int differences(const Pixels& a, const Pixels& b) {
    int count = 0;
    for (int y = 0; y < a.height; ++y) {
        for (int x = 0; x < std::min(a.width, plotRight); ++x) {
            count += a.at(x, y) != b.at(x, y) ? 1 : 0;
        }
    }
    return count;
}

/// How many pixels of the plot are nearly of a colour, as those of thin lines are at best.
int countNear(const Pixels& pixels, std::uint32_t colour) {
    constexpr int nearly = 100;
    int count = 0;
    for (int y = 0; y < pixels.height; ++y) {
        for (int x = 0; x < std::min(pixels.width, plotRight); ++x) {
            int apart = 0;
            for (const int shift : {0, 8, 16}) {
                apart += std::abs(static_cast<int>(pixels.at(x, y) >> shift & 0xFFU) -
                                  static_cast<int>(colour >> shift & 0xFFU));
            }
            count += apart < nearly ? 1 : 0;
        }
    }
    return count;
}

Extent extentOf(const Pixels& pixels, std::uint32_t colour) {
    Extent extent;
    for (int y = 0; y < pixels.height; ++y) {
        for (int x = 0; x < std::min(pixels.width, plotRight); ++x) {
            if (pixels.at(x, y) == colour) {
                extent.left = std::min(extent.left, x);
                extent.right = std::max(extent.right, x);
                extent.top = std::min(extent.top, y);
                extent.bottom = std::max(extent.bottom, y);
                ++extent.count;
            }
        }
    }
    return extent;
}

std::string scanOf(const std::vector<std::string>& points) {
    std::string text = "ply\nformat ascii 1.0\nelement vertex " + std::to_string(points.size()) +
                       "\nproperty float x\nproperty float y\nproperty float z\n"
                       "property float intensity\nend_header\n";
    for (const std::string& point : points) {
        text += point + '\n';
    }
    return text;
}

class CloudconvPreview : public Cloudconv {
protected:
    fs::path drawingFile(const std::string& bytes) const {
        writeFile(in("in.dxf"), bytes);
        return in("in.dxf");
    }

    /// Draws a file and expects no failure; `notes` are all that is said.
    std::string pictureOf(const fs::path& file, const std::string& extension,
                          const std::vector<std::string>& notes = {},
                          const std::vector<std::string>& options = {}) const {
        const fs::path picture = in("picture" + extension);
        std::vector<std::string> arguments = {"preview", file, picture};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.errors;
        std::string expected;
        for (const std::string& note : notes) {
            expected += "cloudconv: " + file.string() + ": note: " + note + '\n';
        }
        EXPECT_EQ(result.errors, expected);
        EXPECT_EQ(result.output, "");
        return picture;
    }

    Pixels pixelsOf(const fs::path& file, const std::vector<std::string>& notes = {},
                    const std::vector<std::string>& options = {}) const {
        return decoded(pictureOf(file, ".png", notes, options));
    }

    /// What an SVG says in words.
    std::string wordsOf(const fs::path& file, const std::vector<std::string>& notes = {},
                        const std::vector<std::string>& options = {}) const {
        const std::string svg = readFile(pictureOf(file, ".svg", notes, options));
        const std::size_t begin = svg.find("<desc>") + 6;
        return svg.substr(begin, svg.find("</desc>") - begin);
    }

    /// Expects that a file gives no picture, for this reason.
    void expectNone(const fs::path& file, const std::string& reason) {
        writeFile(in("old.svg"), "old");
        for (const char* name : {"new.png", "old.svg"}) {
            const std::vector<std::string> before = names();
            const ProgramResult result = run({"preview", file, in(name)});
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.errors, "cloudconv: " + file.string() + ": " + reason + '\n');
            EXPECT_EQ(names(), before);
        }
        EXPECT_EQ(readFile(in("old.svg")), "old");
    }
};

TEST_F(CloudconvPreview, IsAPngOfTheAskedSize) {
    const fs::path file = drawingFile(drawing(line(0, 0, 10, 0)));
    EXPECT_THAT(readFile(pictureOf(file, ".png")), StartsWith("\x89PNG\r\n\x1A\n"));
    Pixels pixels = pixelsOf(file);
    EXPECT_EQ(pixels.width, 1000);
    EXPECT_EQ(pixels.height, 700);
    pixels = pixelsOf(file, {}, {"--size", "640x480"});
    EXPECT_EQ(pixels.width, 640);
    EXPECT_EQ(pixels.height, 480);
    EXPECT_EQ(pixels.at(1, 1), 0xFFFFFFU);
}

TEST_F(CloudconvPreview, IsASvgWithTheWalkAsPathsAndWordsForWhoCannotSeeIt) {
    const std::string svg =
        readFile(pictureOf(examples / "plate_with_gap.dxf", ".svg", {}, {"--size", "800x600"}));
    EXPECT_THAT(svg, StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg "));
    EXPECT_THAT(svg, HasSubstr("width=\"800px\" height=\"600px\" viewBox=\"0 0 800 600\""));
    EXPECT_THAT(svg, HasSubstr("<title>plate_with_gap.dxf</title>"));
    EXPECT_THAT(svg, HasSubstr("<desc>4 contours (2 open, 1 closed, 1 circle), 85 points; "
                               "Contours length (mm); 1  open by 0.002 38.28; 2  circle 6.283; "
                               "3  closed 7.2; 4  open 11.55; start of a contour; "
                               "direction of the walk; way to the next contour; open end; "
                               "gap of 0.002</desc>"));
    // Blue, vermillion, green, purple: four contours.
    for (const char* colour : {"rgb(0%,44.705882%,69.803922%)", "rgb(83.529412%,36.862745%,0%)",
                               "rgb(0%,61.960784%,45.098039%)", "rgb(80%,47.45098%,65.490196%)"}) {
        EXPECT_THAT(svg, HasSubstr("stroke:" + std::string(colour)));
    }
    EXPECT_THAT(svg, HasSubstr("</svg>\n"));
}

/// The lines of an SVG that draw strokes or say something in words. They do not depend on the
/// fonts of the machine, as letters do.
std::vector<std::string> strokesAndWords(const std::string& svg) {
    std::istringstream lines(svg);
    std::vector<std::string> kept;
    for (std::string line; std::getline(lines, line);) {
        if (line.find("stroke:rgb") != std::string::npos || line.find("<desc>") == 0 ||
            line.find("<title>") == 0 || line.find("<svg ") == 0) {
            kept.push_back(line);
        }
    }
    return kept;
}

TEST_F(CloudconvPreview, OfTheShippedDrawingIsTheShippedPicture) {
    const std::vector<std::string> made =
        strokesAndWords(readFile(pictureOf(examples / "plate_with_gap.dxf", ".svg")));
    EXPECT_GT(made.size(), 50U);
    EXPECT_EQ(made, strokesAndWords(readFile(examples / "plate_with_gap.svg")))
        << "cmake --build build/release --target example_pictures makes it again";
}

TEST_F(CloudconvPreview, OfTheShippedScanIsTheShippedPicture) {
    const Pixels shipped = decoded(examples / "ripple_scan.png");
    const Pixels made =
        pixelsOf(examples / "ripple_scan.ply", {}, {"--size", "800x600", "--quiet"});
    ASSERT_EQ(made.width, shipped.width);
    ASSERT_EQ(made.height, shipped.height);
    // Inside the axes, where no letters are.
    int different = 0;
    for (int y = 68; y < 540; ++y) {
        for (int x = 94; x < 528; ++x) {
            for (const int shift : {0, 8, 16}) {
                const auto part = [&](const Pixels& pixels) {
                    return static_cast<int>((pixels.at(x, y) >> shift) & 0xFF);
                };
                different += std::abs(part(made) - part(shipped)) > 8 ? 1 : 0;
            }
        }
    }
    EXPECT_EQ(different, 0)
        << "cmake --build build/release --target example_pictures makes it again";
}

TEST_F(CloudconvPreview, IsAPdfWithATitle) {
    const std::string pdf = readFile(pictureOf(examples / "plate.dxf", ".pdf"));
    EXPECT_THAT(pdf, StartsWith("%PDF-1."));
    EXPECT_THAT(pdf, HasSubstr("/Title (plate.dxf)"));
    EXPECT_THAT(pdf, HasSubstr("/MediaBox [ 0 0 1000 700 ]"));
    EXPECT_THAT(pdf, Not(HasSubstr("/CreationDate")));
    EXPECT_THAT(pdf.substr(pdf.size() - 6), "%%EOF\n");
}

TEST_F(CloudconvPreview, IsTheSameEveryTime) {
    for (const char* input : {"plate_with_gap.dxf", "ripple_scan.ply"}) {
        for (const char* extension : {".png", ".svg", ".pdf"}) {
            const std::vector<std::string> quiet = {"--quiet"};
            const std::string first = readFile(pictureOf(examples / input, extension, {}, quiet));
            EXPECT_EQ(readFile(pictureOf(examples / input, extension, {}, quiet)), first)
                << input << extension;
        }
    }
}

TEST_F(CloudconvPreview, GoesToStandardOutputAndTakesStandardInput) {
    const fs::path file = drawingFile(drawing(line(0, 0, 10, 0)));
    const ProgramResult result = run({"preview", file, "-", "--to", "svg"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, readFile(pictureOf(file, ".svg")));
    EXPECT_EQ(run({"preview", file, in("picture"), "--to", "PNG"}).status, 0);
    EXPECT_EQ(decoded(in("picture")).width, 1000);
    EXPECT_EQ(run({"preview", "-", in("a.svg"), "--from", "dxf"},
                  [&] {
                      if (freopen(file.c_str(), "r", stdin) == nullptr) {
                          _exit(99);
                      }
                  })
                  .status,
              0);
    EXPECT_THAT(readFile(in("a.svg")), HasSubstr("<title>standard input</title>"));
}

TEST_F(CloudconvPreview, HasUnitsOfOneLengthInXAndY) {
    const std::string square =
        line(0, 0, 10, 0) + line(10, 0, 10, 10) + line(10, 10, 0, 10) + line(0, 10, 0, 0);
    const Extent extent = extentOf(pixelsOf(drawingFile(drawing(square))), blue);
    EXPECT_NEAR(extent.width(), extent.height(), 8);
    EXPECT_GT(extent.height(), 450);
    // Twice as wide as high, however high the picture is.
    const std::string wide =
        line(0, 0, 20, 0) + line(20, 0, 20, 10) + line(20, 10, 0, 10) + line(0, 10, 0, 0);
    const Extent other =
        extentOf(pixelsOf(drawingFile(drawing(wide)), {}, {"--size", "1000x1000"}), blue);
    EXPECT_NEAR(other.width(), 2 * other.height(), 16);
}

TEST_F(CloudconvPreview, HasYUpwards) {
    // The path goes through the lines as they come: blue is above.
    const Pixels pixels = pixelsOf(drawingFile(drawing(line(0, 10, 10, 10) + line(0, 0, 10, 0))));
    EXPECT_GT(extentOf(pixels, blue).count, 500);
    EXPECT_LT(extentOf(pixels, blue).bottom, extentOf(pixels, vermillion).top);
}

TEST_F(CloudconvPreview, MarksOpenEndsAndGapsOnlyWhereThereAre) {
    const auto triangle = [](double gap) {
        return drawing(line(0, 0, 10, 0) + line(10, 0, 10, 10) + line(10, 10, gap, gap));
    };
    Pixels pixels = pixelsOf(drawingFile(triangle(0)));
    EXPECT_EQ(extentOf(pixels, gapRed).count, 0);
    const int frameInk = extentOf(pixels, ink).count;
    EXPECT_THAT(wordsOf(in("in.dxf")), HasSubstr("1 contour (1 closed)"));
    EXPECT_THAT(wordsOf(in("in.dxf")), Not(HasSubstr("open")));

    pixels = pixelsOf(drawingFile(triangle(0.002)));
    const Extent ring = extentOf(pixels, gapRed);
    EXPECT_GT(ring.count, 100);
    EXPECT_GT(extentOf(pixels, ink).count, frameInk + 30) << "boxes at the ends";
    EXPECT_NEAR(ring.top, extentOf(pixels, blue).bottom - 15, 12) << "at the lower left corner";
    EXPECT_THAT(wordsOf(in("in.dxf")), HasSubstr("open by 0.00283"));
    EXPECT_THAT(wordsOf(in("in.dxf"), {}, {"--distance", "0.002"}), Not(HasSubstr("gap")));
    EXPECT_THAT(wordsOf(in("in.dxf"), {}, {"--distance", "0.002"}), HasSubstr("1  open "));

    drawingFile(triangle(0.5));
    EXPECT_THAT(wordsOf(in("in.dxf")), Not(HasSubstr("gap")));
    EXPECT_THAT(wordsOf(in("in.dxf"), {}, {"--distance", "1"}), HasSubstr("gap of 0.707"));
}

TEST_F(CloudconvPreview, MarksTheGapOfTheShippedDrawing) {
    EXPECT_EQ(extentOf(pixelsOf(examples / "plate.dxf"), gapRed).count, 0);
    EXPECT_GT(extentOf(pixelsOf(examples / "plate_with_gap.dxf"), gapRed).count, 100);
}

TEST_F(CloudconvPreview, ListsOpenContoursFirstWhenNotAllCanBe) {
    std::string entities;
    for (int i = 0; i < 20; ++i) {
        const double x = 4.0 * i;
        entities += line(x, 0, x + 1, 0) + line(x + 1, 0, x + 1, 1) +
                    (i == 3 ? std::string() : line(x + 1, 1, x, 0));
    }
    const std::string words = wordsOf(drawingFile(drawing(entities)), {}, {"--size", "1000x480"});
    EXPECT_THAT(words, StartsWith("20 contours (1 open, 19 closed)"));
    EXPECT_THAT(words, HasSubstr("  open 2;"));
    EXPECT_THAT(words, HasSubstr(" more contours;"));
    EXPECT_THAT(wordsOf(drawingFile(drawing(line(0, 0, 1, 0) + pointAt(5, 5, 0)))),
                StartsWith("2 contours (1 open, 1 of points), 3 points"));
}

/// So many lines of length 1, in turns on layers of these names.
std::string linesOn(int lines, const std::vector<std::string>& layers) {
    std::string entities;
    for (int i = 0; i < lines; ++i) {
        const std::string x = std::to_string(2 * i);
        const std::string& layer = layers[static_cast<std::size_t>(i) % layers.size()];
        entities += dxf("0 LINE  8 " + layer + "  10 " + x + "  20 0  11 " + x + "  21 1");
    }
    return entities;
}

TEST_F(CloudconvPreview, SumsUpByLayerBeyondTwentyContours) {
    const fs::path file = drawingFile(drawing(linesOn(21, {"walls", "doors", "<x>&"})));
    EXPECT_THAT(wordsOf(file),
                HasSubstr("Layers length; walls (7) 7; doors (7) 7; &lt;x&gt;&amp; (7) 7;"));
    const Pixels pixels = pixelsOf(file);
    EXPECT_GT(extentOf(pixels, blue).count, 200);
    EXPECT_GT(extentOf(pixels, vermillion).count, 200);
    EXPECT_EQ(extentOf(pixels, purple).count, 0) << "no fourth layer, no fourth colour";
    const std::string few = wordsOf(drawingFile(drawing(linesOn(20, {"walls", "doors"}))));
    EXPECT_THAT(few, HasSubstr("20  open 1;"));
    EXPECT_THAT(few, Not(HasSubstr("walls")));
    EXPECT_THAT(wordsOf(drawingFile(drawing(linesOn(21, {"walls"})))),
                HasSubstr("Contours length; 21  open 21;"));
}

TEST_F(CloudconvPreview, DrawsWaysOfManyContoursOnlyWhenAskedTo) {
    constexpr char way[] = "way to the next contour";
    EXPECT_THAT(wordsOf(drawingFile(drawing(linesOn(3, {"a"})))), HasSubstr(way));
    const fs::path many = drawingFile(drawing(linesOn(30, {"a"})));
    EXPECT_THAT(wordsOf(many), Not(HasSubstr(way)));
    EXPECT_THAT(wordsOf(many, {}, {"--ways"}), HasSubstr(way));
    const Pixels without = pixelsOf(many, {}, {"--no-marks"});
    const Pixels with = pixelsOf(many, {}, {"--no-marks", "--ways"});
    EXPECT_GT(differences(without, with), 500);
}

TEST_F(CloudconvPreview, WithoutMarksHasTheLinesAlone) {
    const fs::path file =
        drawingFile(drawing(line(0, 0, 10, 0) + line(10, 0, 10, 10) + line(10, 10, 0.002, 0.002)));
    const Pixels marked = pixelsOf(file);
    const Pixels bare = pixelsOf(file, {}, {"--no-marks"});
    EXPECT_GT(extentOf(marked, gapRed).count, 100);
    EXPECT_EQ(extentOf(bare, gapRed).count, 0);
    EXPECT_LT(extentOf(bare, ink).count, extentOf(marked, ink).count - 30)
        << "no boxes at the ends";
    EXPECT_GT(extentOf(bare, blue).count, 1000);
    const std::string words = wordsOf(file, {}, {"--no-marks"});
    EXPECT_THAT(words, Not(HasSubstr("direction")));
    EXPECT_THAT(words, Not(HasSubstr("start of")));
    EXPECT_THAT(words, HasSubstr("open by 0.00283")) << "what is known is told";
}

TEST_F(CloudconvPreview, HasTheLayersAskedForAndSaysWhatIsLeftOut) {
    const std::string text = dxf("0 TEXT  8 notes  10 0  20 0  40 1  1 hello");
    const fs::path file = drawingFile(drawing(linesOn(4, {"walls", "doors"}) + text + text));
    const std::string annotation = "2 TEXT (annotation)";
    EXPECT_THAT(
        wordsOf(file, {"left out: " + annotation}),
        StartsWith("4 contours (4 open), 8 points; left out: " + annotation + "; Contours"));
    const std::string words = wordsOf(file, {}, {"--layer", "W*", "--quiet"});
    EXPECT_THAT(words, StartsWith("2 contours (2 open), 4 points; left out: "));
    EXPECT_THAT(words, HasSubstr("2 LINE (on a layer not asked for: doors)"));
    const ProgramResult none = run({"preview", file, in("a.svg"), "--layer", "roof"});
    EXPECT_EQ(none.status, 1);
    EXPECT_THAT(none.errors, HasSubstr(": nothing to draw: left out 2 LINE ("));
}

TEST_F(CloudconvPreview, DrawsThePathUnlessTheWalkIsAskedFor) {
    // A half circle: the path follows the arc, the walk its chord.
    const fs::path file =
        drawingFile(drawing(dxf("0 LWPOLYLINE  8 0  90 2  70 0  10 0  20 0  42 1  10 10  20 0")));
    EXPECT_THAT(wordsOf(file), HasSubstr("1  open 15.71"));
    EXPECT_THAT(wordsOf(file, {}, {"--plain"}), HasSubstr("1  open 10;"));
    EXPECT_GT(extentOf(pixelsOf(file), blue).height(), 200);
    EXPECT_LT(extentOf(pixelsOf(file, {}, {"--plain"}), blue).height(), 30);
}

TEST_F(CloudconvPreview, HasLengthsWithoutExponents) {
    const std::string words = wordsOf(drawingFile(drawing(line(0, 0, 10951.25, 0))));
    EXPECT_THAT(words, HasSubstr("1  open 10951;"));
}

TEST_F(CloudconvPreview, OfADrawingIsAPageWithItsFindings) {
    const fs::path file =
        drawingFile(drawing(line(0, 0, 10, 0) + line(10, 0, 10, 10) + line(10, 10, 0.002, 0.002)));
    const std::string page = readFile(pictureOf(file, ".html"));
    EXPECT_THAT(page, StartsWith("<!DOCTYPE html>\n"));
    EXPECT_THAT(page, HasSubstr("<title>in.dxf</title>"));
    EXPECT_THAT(page, HasSubstr("default-src 'none'; script-src 'sha256-"));
    EXPECT_THAT(page, HasSubstr("near miss: "));
    EXPECT_THAT(page, HasSubstr("\"title\":\"in.dxf\""));
    EXPECT_EQ(readFile(pictureOf(file, ".html")), page) << "the same every time";
    EXPECT_THAT(readFile(pictureOf(file, ".html", {}, {"--plain"})), HasSubstr("near miss: "));
    const ProgramResult result = run({"preview", file, "-", "--to", "html", "--quiet"});
    EXPECT_EQ(result.output, page);
}

TEST_F(CloudconvPreview, OfAScanIsAPageOfNoMorePointsThanAskedFor) {
    const fs::path file = input(scanOf({"0 0 0 1", "1 0 0 2", "2 0 0 3", "nan 0 0 4"}));
    const std::string note = "left out 1 point without a place (nan, infinite or too far away)";
    const std::string page = readFile(pictureOf(file, ".html", {note}));
    EXPECT_THAT(page, StartsWith("<!DOCTYPE html>\n"));
    EXPECT_THAT(page, HasSubstr("\"points\":4"));
    EXPECT_THAT(page, HasSubstr("\"shown\":3"));
    EXPECT_THAT(readFile(pictureOf(file, ".html", {note}, {"--points", "2"})),
                HasSubstr("\"shown\":2"));
}

TEST_F(CloudconvPreview, OfAScanIsSeenFromTheSideAskedFor) {
    // What is to the right is nearer from the corner, which is a way down.
    const fs::path file = input(scanOf({"0 0 0 5", "10 0 8 9"}));
    const auto slopeFrom = [&](const std::string& view) {
        const Pixels pixels = pixelsOf(file, {}, {"--view", view});
        return extentOf(pixels, 0x440154).top - extentOf(pixels, 0xFDE725).top;
    };
    EXPECT_NEAR(slopeFrom("top"), 0, 2);
    EXPECT_GT(slopeFrom("front"), 100);
    EXPECT_GT(slopeFrom("ISO"), 20);
    EXPECT_THAT(wordsOf(file, {}, {"--view", "side"}), HasSubstr("seen from the right"));
    EXPECT_THAT(wordsOf(file, {}, {"--view", "iso"}),
                HasSubstr("x: 0 to 10; y: 0 to 0; z: 0 to 8"));
}

TEST_F(CloudconvPreview, OfAScanHasTheColoursAskedFor) {
    const fs::path file =
        input("ply\nformat ascii 1.0\nelement vertex 2\nproperty double x\nproperty double y\n"
              "property double z\nproperty uchar red\nproperty uchar green\n"
              "property uchar blue\nelement face 0\nproperty list uchar int vertex_indices\n"
              "end_header\n4512000 5400000 1 255 0 0\n4512009 5400000 2 0 0 255\n");
    const Pixels pixels = pixelsOf(file, {}, {"--quiet"});
    EXPECT_GT(extentOf(pixels, 0xFF0000).count, 20);
    EXPECT_GT(extentOf(pixels, 0x0000FF).count, 20);
    EXPECT_THAT(wordsOf(file, {}, {"--quiet"}), HasSubstr("Colours of the file"));
    EXPECT_GT(extentOf(pixelsOf(file, {}, {"--colour", "height", "--quiet"}), 0xFDE725).count, 20);
    EXPECT_THAT(run({"preview", file, in("a.png"), "--colour", "intensity"}).errors,
                HasSubstr("has no intensities for --colour intensity"));
    EXPECT_EQ(run({"preview", file, in("a.png"), "--plain"}).status, 1) << "by the fixed rules";
    EXPECT_THAT(run({"preview", input(scanOf({"0 0 0 1"})), in("a.png"), "--colour", "rgb"}).errors,
                HasSubstr("has no colours for --colour rgb"));
}

TEST_F(CloudconvPreview, OfAScanIsColouredByIntensityWithTheHighestPointsInFront) {
    const Pixels pixels = pixelsOf(input(scanOf({"0 0 0 5", "0 0 -1 9", "10 0 0 9", "10 10 0 1"})));
    const Extent low = extentOf(pixels, 0x440154);
    const Extent high = extentOf(pixels, 0xFDE725);
    EXPECT_GT(low.count, 20);
    EXPECT_GT(high.count, 20);
    EXPECT_LT(low.bottom, high.top) << "y upwards";
    EXPECT_NEAR(low.left, high.left, 1) << "9 at the left is hidden";
    EXPECT_LT(high.width(), 14);
}

TEST_F(CloudconvPreview, OfTheShippedScanSaysWhatIsLeftOut) {
    const std::string note = "left out 19 points without a place (nan, infinite or too far away)";
    EXPECT_EQ(wordsOf(examples / "ripple_scan.ply", {note}),
              "1200 points, organised 40 \xC3\x97 30; Intensity; seen from above: what is nearer; "
              "hides what is behind; left out 19 points without a place");
}

TEST_F(CloudconvPreview, OfAScanWithoutIntensityIsColouredByHeight) {
    const fs::path file = input("ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\n"
                                "property float y\nproperty float z\nend_header\n0 0 1\n9 0 2\n");
    const std::string note = "no intensity, coloured by z";
    EXPECT_THAT(wordsOf(file, {note}), HasSubstr("Height (z)"));
    EXPECT_GT(extentOf(pixelsOf(file, {note}), 0xFDE725).count, 20);
}

TEST_F(CloudconvPreview, MakesSenseOfOddClouds) {
    const std::string leftOut = "left out 1 point without a place (nan, infinite or too far away)";
    // One point, equal points: a dot in the middle of the colour scale.
    for (const std::vector<std::string>& points :
         {std::vector<std::string>{"5 6 7 8"}, {"5 6 7 8", "5 6 7 8", "5 6 7 8"}}) {
        const Pixels pixels = pixelsOf(input(scanOf(points)));
        const std::uint32_t middle = pixels.at((92 + plotRight) / 2, (66 + 642) / 2);
        EXPECT_NEAR(middle >> 16, 0x22, 1);
        EXPECT_NEAR((middle >> 8) & 0xFF, 0x90, 1);
        EXPECT_NEAR(middle & 0xFF, 0x8B, 1);
        EXPECT_THAT(wordsOf(in("in.ply")), HasSubstr("Intensity; 8 everywhere"));
    }
    EXPECT_THAT(wordsOf(input(scanOf({"0 0 0 nan", "1 0 0 inf"}))),
                HasSubstr("Intensity; nan or infinite everywhere"));
    EXPECT_GT(extentOf(pixelsOf(in("in.ply")), 0x999999).count, 20);
    for (const char* far : {"3e38", "-3e38", "1e-42", "16777216"}) {
        const std::string number = far;
        const fs::path file =
            input(scanOf({number + " 0 0 " + number, "0 " + number + " 0 -" + "1", "nan 0 0 0"}));
        EXPECT_GT(extentOf(pixelsOf(file, {leftOut}), 0x440154).count, 20) << far;
        EXPECT_GT(extentOf(pixelsOf(file, {leftOut}), 0xFDE725).count, 20) << far;
    }
}

TEST_F(CloudconvPreview, MakesSenseOfOddDrawings) {
    const auto withNumbers = [](const std::string& x, const std::string& y) {
        return drawing(dxf("0 LINE  8 0  10 " + x + "  20 " + y + "  11 " + x + "  21 " + y) +
                       dxf("0 POINT  8 0  10 " + x + "  20 " + y + "  30 1"));
    };
    for (const char* x : {"0", "1e149", "-1e149", "1e15", "4512345.678", "1e-310"}) {
        for (const char* y : {"0", "1e149", "7"}) {
            const Extent extent = extentOf(pixelsOf(drawingFile(withNumbers(x, y))), blue);
            EXPECT_GT(extent.count, 3) << x << ' ' << y;
        }
    }
    const fs::path far = drawingFile(withNumbers("1e300", "-1e300"));
    EXPECT_GT(extentOf(pixelsOf(far, {}, {"--plain"}), blue).count, 3);
    expectNone(far, "nothing to draw: left out 1 LINE, 1 POINT (broken)");
}

TEST_F(CloudconvPreview, OfNothingIsAFailure) {
    expectNone(drawingFile(drawing({})), "nothing to draw: no points");
    expectNone(input(scanOf({})), "nothing to draw: no points");
    expectNone(input(scanOf({"nan nan nan 1", "inf 0 0 1"})),
               "nothing to draw: none of 2 points has a place");
    expectNone(input(scanOf({"nan nan nan 1"})), "nothing to draw: none of 1 point has a place");
    expectNone(drawingFile("garbage"), "no DXF file: no section begins in it");
    expectNone(input("garbage"), "this is no PLY file: its first line is not 'ply'");
}

TEST_F(CloudconvPreview, DrawsTensOfThousandsOfContoursAndPoints) {
    std::string text = dxf("0 SECTION  2 ENTITIES");
    for (int i = 0; i < 30000; ++i) {
        text += line(i % 173, i / 173, i % 173 + 0.5, i / 173 + 0.3);
    }
    const fs::path file = drawingFile(text + dxf("0 ENDSEC  0 EOF"));
    const Pixels crowd = pixelsOf(file);
    EXPECT_GT(countNear(crowd, blue), 10000);
    EXPECT_GT(countNear(crowd, white), 30000) << "lines that one can tell apart";
    std::vector<std::string> points;
    for (int i = 0; i < 60000; ++i) {
        points.push_back(std::to_string(i % 251) + ' ' + std::to_string(i / 251) + " 0 " +
                         std::to_string(i));
    }
    const Pixels pixels = pixelsOf(input(scanOf(points)));
    EXPECT_NE(pixels.at(400, 350), 0xFFFFFFU);
}

TEST_F(CloudconvPreview, HasAnyNameAsItsTitle) {
    const std::string bytes = drawing(line(0, 0, 1, 0));
    const std::vector<std::pair<std::string, std::string>> titles = {
        {"a&b<c>.dxf", "<title>a&amp;b&lt;c&gt;.dxf</title>"},
        {"gr\xFCn\x1B.dxf", "<title>gr\xEF\xBF\xBDn\\x1B.dxf</title>"},
        {std::string(240, 'W') + ".dxf", "<title>" + std::string(240, 'W') + ".dxf</title>"}};
    for (const auto& [name, title] : titles) {
        writeFile(in(name), bytes);
        EXPECT_THAT(readFile(pictureOf(in(name), ".svg")), HasSubstr(title));
        EXPECT_EQ(pixelsOf(in(name)).width, 1000);
    }
}

TEST_F(CloudconvPreview, ThatDoesNotFitOnTheDiskLeavesNothing) {
    const fs::path file = drawingFile(drawing(line(0, 0, 10, 0)));
    for (const char* name : {"new.png", "new.svg", "new.pdf"}) {
        const std::vector<std::string> before = names();
        const ProgramResult result = run({"preview", file, in(name)}, [] {
            const rlimit limit = {4096, 4096};
            setrlimit(RLIMIT_FSIZE, &limit);
        });
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors, "cloudconv: " + in(name).string() + ": File too large\n");
        EXPECT_EQ(names(), before);
    }
    const ProgramResult result = run({"preview", file, "/dev/full", "--to", "png"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "cloudconv: /dev/full: No space left on device\n");
}

TEST_F(CloudconvPreview, AloneNeedsCairo) {
    const fs::path file = drawingFile(drawing(line(0, 0, 10, 0)));
    // What stands first under its name is no library.
    std::ofstream(in("libcairo.so.2")) << "none";
    const auto hideCairo = [&] { setenv("LD_LIBRARY_PATH", in("").c_str(), 1); };
    const ProgramResult picture = run({"preview", file, in("picture.png")}, hideCairo);
    EXPECT_EQ(picture.status, 1);
    EXPECT_THAT(picture.errors, StartsWith("cloudconv: pictures need cairo: "));
    EXPECT_FALSE(fs::exists(in("picture.png")));
    EXPECT_EQ(run({"preview", file, in("page.html")}, hideCairo).status, 0);
    EXPECT_EQ(run({"convert", file, in("path.ply")}, hideCairo).status, 0);
}

TEST_F(CloudconvPreview, OfHostileFilesIsAPictureOrAFailure) {
    int pictures = 0;
    for (const char* folder : {"Dxf", "Ply"}) {
        const fs::path corpus = fs::path(CONVERTERS_TEST_DIR) / "../fuzz/corpus" / folder;
        for (const fs::directory_entry& entry : fs::directory_iterator(corpus)) {
            const ProgramResult result = run({"preview", entry.path(), in("picture.svg")});
            EXPECT_TRUE(result.status == 0 || result.status == 1)
                << entry.path() << ' ' << result.status << result.errors;
            pictures += result.status == 0 ? 1 : 0;
        }
    }
    EXPECT_GT(pictures, 5);
}

TEST_F(CloudconvPreview, ReplacesItsInputOnlyWhenForced) {
    const std::string bytes = drawing(line(0, 0, 10, 0));
    const fs::path file = drawingFile(bytes);
    fs::create_symlink(file, in("link.dxf"));
    for (const fs::path& name : {file, in("link.dxf")}) {
        const ProgramResult refused = run({"preview", file, name, "--to=svg"});
        EXPECT_EQ(refused.status, 2);
        EXPECT_THAT(refused.errors,
                    HasSubstr(name.string() + " is the input; --force replaces it"));
        EXPECT_EQ(readFile(file), bytes);
    }
    EXPECT_EQ(run({"preview", file, file, "--to=svg", "--force"}).status, 0);
    EXPECT_THAT(readFile(file), StartsWith("<?xml"));
}

TEST_F(CloudconvPreview, OfWrongUsageIsStatus2AndTouchesNothing) {
    const std::string file = drawingFile(drawing(line(0, 0, 10, 0)));
    const std::string picture = in("a.png");
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {file},
        {file, in("a.jpg")},
        {file, in("png")},
        {file, "-"},
        {"-", picture},
        {file, picture, "--to", "gif"},
        {file, picture, "--size", "1000"},
        {file, picture, "--size", "1000x"},
        {file, picture, "--size", "x700"},
        {file, picture, "--size", "399x700"},
        {file, picture, "--size", "700x5001"},
        {file, picture, "--size", "-700x700"},
        {file, picture, "--size", "7e2x700"},
        {file, picture, "--size", "nanxinf"},
        {file, picture, "--size", "700x99999999999999999999"},
        {file, picture, "--distance", "nan"},
        {file, picture, "--view", "top"},
        {file, picture, "--colour", "rgb"},
        {file, picture, "--points", "5"},
        {file, picture, "--plain", "--layer", "0"},
        {file, picture, "--axes", "plain"},
        {file, picture, "--layer"},
        {file, picture, "third"}};
    for (std::vector<std::string> arguments : wrong) {
        arguments.insert(arguments.begin(), "preview");
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << ::testing::PrintToString(arguments);
        EXPECT_NE(result.errors, "");
        EXPECT_THAT(names(), ElementsAre("in.dxf"));
    }
}

} // namespace
