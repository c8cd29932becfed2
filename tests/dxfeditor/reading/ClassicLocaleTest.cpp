#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFReader.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/DrawingText.h"
#include "tests/support/Dxf.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <clocale>
#include <locale>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

/// Makes a locale global while it lives.
class GlobalLocale {
public:
    explicit GlobalLocale(const std::locale& locale) : m_before(std::locale::global(locale)) {}
    ~GlobalLocale() { std::locale::global(m_before); }

private:
    std::locale m_before;
};

std::vector<char> drawing() {
    const std::string text = dxf("0 LINE  10 1.5  20 2,5  30 1234567.25  0 EOF");
    return {text.begin(), text.end()};
}

/// Keeps the global locale that it sees while dxflib parses.
class LocaleWatcher : public DXFReader {
public:
    using DXFReader::DXFReader;
    void addLine(const DL_LineData& data) override {
        seen = std::locale();
        if (throws) {
            throw std::runtime_error("stop");
        }
        DXFReader::addLine(data);
    }

    std::locale seen;
    bool throws = false;
};

TEST(ClassicLocale, ADecimalCommaDoesNotChangeNumbers) {
    const CommaLocale comma;
    DXFDocument document;
    DXFReader(document).load(drawing());
    EXPECT_EQ(describe(document), "line 1.5 2.5 1234567.25 0 0 0 {0 256 -1 -1 BYLAYER 1 -1}\n");
}

TEST(ClassicLocale, TheGlobalLocaleIsBackAfterALoad) {
    const CommaLocale comma;
    const std::locale before;
    DXFDocument document;
    LocaleWatcher reader(document);
    reader.load(drawing());
    EXPECT_FALSE(reader.seen == before);
    EXPECT_TRUE(std::locale() == before);
}

TEST(ClassicLocale, TheGlobalLocaleIsBackAfterAnException) {
    const CommaLocale comma;
    const std::locale before;
    DXFDocument document;
    LocaleWatcher reader(document);
    reader.throws = true;
    EXPECT_THROW(reader.load(drawing()), std::runtime_error);
    EXPECT_TRUE(std::locale() == before);
}

TEST(ClassicLocale, TheClassicGlobalLocaleIsLeftAlone) {
    DXFDocument document;
    LocaleWatcher reader(document);
    reader.load(drawing());
    EXPECT_TRUE(reader.seen == std::locale::classic());
}

TEST(ClassicLocale, TheLocaleOfTheCLibraryIsLeftAlone) {
    const GlobalLocale named(std::locale("C.UTF-8"));
    std::setlocale(LC_ALL, "C");
    std::setlocale(LC_CTYPE, "C.UTF-8");
    const std::string before = std::setlocale(LC_ALL, nullptr);
    DXFDocument document;
    DXFReader(document).load(drawing());
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
    std::setlocale(LC_ALL, "C");
}

TEST(ClassicLocale, AFileIsReadInTheSameLocales) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("drawing.dxf");
    const std::vector<char> bytes = drawing();
    writeContent(path, std::string(bytes.begin(), bytes.end()));
    const CommaLocale comma;
    const std::locale before;
    const std::string beforeOfC = std::setlocale(LC_ALL, nullptr);
    DXFDocument document;
    LocaleWatcher reader(document);
    reader.load(path);
    EXPECT_EQ(describe(document), "line 1.5 2.5 1234567.25 0 0 0 {0 256 -1 -1 BYLAYER 1 -1}\n");
    EXPECT_TRUE(std::locale() == before);
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), beforeOfC);
}

} // namespace
