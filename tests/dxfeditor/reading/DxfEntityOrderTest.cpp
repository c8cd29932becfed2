// Objects in every order, also in such as no program writes: each entity outside blocks comes into
// the document once, in the order of the text, with its own attributes.

#include "dxfeditor/DXFReader.h"
#include "tests/support/DrawingText.h"
#include "tests/support/Dxf.h"
#include "tests/support/Random.h"

#include <gtest/gtest.h>

namespace {

/// Writes random objects, and notes by plain rules what a document of them holds.
class ObjectSequence {
public:
    explicit ObjectSequence(std::uint32_t seed) : m_random(seed) {
        for (int objects = 1 + m_random.below<int>(14); objects > 0; --objects) {
            addObject();
        }
        m_lines.insert(m_lines.end(), {"0", "EOF"});
    }

    std::string text() const { return dxfOfLines(m_lines); }

    /// The entities, one a line, as describe() tells them.
    std::string entities() const {
        std::string all;
        for (const Entity& entity : m_entities) {
            all += entity.text + " {0 " + entity.color + " -1 -1 BYLAYER 1 -1}\n";
        }
        return all;
    }

private:
    struct Entity {
        std::string text;
        std::string color;
    };
    /// What the next object may still become a part of.
    enum class Open { Nothing, Point, Points, Polyline };

    void addObject() {
        static const std::vector<std::string> names = {
            "POINT",  "POINT",  "LINE",       "CIRCLE", "ARC",   "POLYLINE", "VERTEX",
            "VERTEX", "SEQEND", "LWPOLYLINE", "SPLINE", "BLOCK", "ENDBLK",   "TEXT",
            "LEADER", "HATCH",  "IMAGE",      "INSERT", "LAYER", "ENDSEC"};
        const std::string name = names[static_cast<std::size_t>(m_random.below(20))];
        const std::string number = std::to_string(++m_objects);
        m_color = std::to_string(1 + m_random.below(250));
        m_lines.insert(m_lines.end(), {"0", name, "62", m_color});
        if (name == "BLOCK" || name == "LAYER") {
            m_lines.insert(m_lines.end(), {"2", "N"});
        } else if ((name == "LWPOLYLINE" || name == "SPLINE") && m_random.below(2) == 0) {
            m_lines.insert(m_lines.end(), {name == "SPLINE" ? "73" : "90", "1"});
        }
        m_lines.insert(m_lines.end(), {"10", number});
        note(name, number);
    }

    void note(const std::string& name, const std::string& number) {
        const std::string point = " " + number + " 0 0";
        if (name == "POINT") {
            notePoint(point);
        } else if (name == "VERTEX") {
            noteVertex(point);
        } else if (name == "LINE") {
            noteEntity("line" + point + " 0 0 0", Open::Nothing);
        } else if (name == "CIRCLE") {
            noteEntity("circle" + point + " 0", Open::Nothing);
        } else if (name == "ARC") {
            noteEntity("arc" + point + " 0 0 0", Open::Nothing);
        } else if (name == "LWPOLYLINE") {
            noteEntity("polyline 0 0 0" + point + " 0", Open::Nothing);
        } else if (name == "SPLINE") {
            noteEntity("spline 3 knots control" + point + " 1 fit", Open::Nothing);
        } else if (name == "POLYLINE") {
            noteEntity("polyline 0 0 0", Open::Polyline);
        } else if (name == "BLOCK" || (name == "ENDBLK" && m_inBlock)) {
            m_inBlock = name == "BLOCK";
            m_open = Open::Nothing;
        } else if (m_open == Open::Polyline &&
                   (name == "SEQEND" || name == "LAYER" || name == "ENDBLK")) {
            m_open = Open::Nothing;
        }
    }

    void noteEntity(const std::string& text, Open open) {
        if (!m_inBlock) {
            m_entities.push_back({text, m_color});
            m_open = open;
        }
    }

    void notePoint(const std::string& point) {
        if (m_inBlock || (m_open != Open::Point && m_open != Open::Points)) {
            noteEntity("point" + point, Open::Point);
            return;
        }
        Entity& points = m_entities.back();
        if (m_open == Open::Point) {
            points = {"points" + points.text.substr(points.text.find(' ')), m_color};
            m_open = Open::Points;
        }
        points.text += point;
    }

    void noteVertex(const std::string& point) {
        if (m_open == Open::Polyline) {
            m_entities.back().text += point + " 0";
            m_entities.back().color = m_color;
        }
    }

    Random32 m_random;
    std::vector<std::string> m_lines;
    int m_objects = 0;
    std::string m_color;
    std::vector<Entity> m_entities;
    Open m_open = Open::Nothing;
    bool m_inBlock = false;
};

TEST(DxfEntityOrder, EachEntityOutsideBlocksIsAddedOnceInOrder) {
    std::size_t entities = 0;
    for (std::uint32_t seed = 0; seed < 5000; ++seed) {
        const ObjectSequence sequence(seed);
        const std::string text = sequence.text();
        DXFDocument document;
        DXFReader reader(document);
        ASSERT_TRUE(reader.load(std::vector<char>(text.begin(), text.end())));
        std::string found;
        for (const auto& entity : document.entities()) {
            found += describe(*entity) + '\n';
        }
        ASSERT_EQ(found, sequence.entities()) << "seed " << seed << '\n' << text;
        entities += document.entities().size();
    }
    EXPECT_GT(entities, 10000U);
}

} // namespace
