#pragma once

#include "dxfeditor/detail/reading/DxfLastValues.h"
#include "dxfeditor/detail/reading/DxfListOf.h"
#include "dxfeditor/text/DxfObjects.h"

#include <dxflib/dl_attributes.h>
#include <dxflib/dl_entities.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class DL_CreationInterface;

namespace dxfeditor {

/// Decodes entities, layers, blocks and their ends in dxflib's place, at many times its speed, as
/// long as their numbers are plain: digits, a point and an exponent, with no sign but a minus,
/// within the range of a double; and their lists are as long as they say. Anything else is dxflib's
/// business.
///
/// What it decodes it reports as dxflib does: the same callbacks with the same records and
/// attributes in the same order.
///
/// Each group is looked at once. While the end of an object is searched, its values are noted, and
/// of lists converted; at the end the record is made of them. Attributes are made anew only where
/// they differ from those of the object before.
class DxfEntityDecoder {
public:
    /// @param setsAlone  whether nobody but the decoder sets the reader's attributes: it then does
    ///                   not set again those that the reader has
    explicit DxfEntityDecoder(bool setsAlone = false);

    /// Reads the next object, and decodes it if it can. Decoding a POLYLINE takes the vertices
    /// behind it from `objects`; if it cannot be decoded, they stay there.
    /// @return false at the end of the text
    bool next(DxfObjects& objects, DxfObject& object);

    /// Whether the object read last is decoded, so that report() may be called.
    bool hasDecoded() const { return m_hasDecoded; }

    /// Reports what is decoded.
    void report(DL_CreationInterface& reader);

    /// To be called when somebody else has set the reader's attributes nevertheless.
    void attributesWereSet() { m_reportedStyle = noStyle; }

private:
    /// Attributes without the handle, and the direction of extrusion: what many entities have in
    /// common.
    struct Style {
        DL_Attributes attributes;
        std::array<double, 3> direction{};
    };

    /// A VERTEX behind a POLYLINE.
    struct SequenceVertex {
        DL_VertexData data;
        int handle;
        /// Index into the styles of the sequence.
        std::uint32_t style;
        /// The vertex carries a face of a mesh and no point: dxflib does not report it.
        bool isFace;
    };

    bool read(DxfObjects& objects, DxfObject& object);
    void takeOfLwPolyline(const DxfGroup& group);
    void takeOfSpline(const DxfGroup& group);

    bool decode(const DxfObject& object);
    bool decodeSequence(DxfObjects& objects);
    void decodeSpline();
    void setWeights();
    void decodeStyle();
    DL_PolylineData polyline(int vertexCount);

    void reportStyle(DL_CreationInterface& reader);
    static void reportStyle(DL_CreationInterface& reader, Style& style, int handle,
                            double elevation);
    void reportSequence(DL_CreationInterface& reader);
    void reportLwPolyline(DL_CreationInterface& reader) const;
    void reportSpline(DL_CreationInterface& reader) const;

    /// Reads a number; one that is not plain makes the object not plain.
    double real(std::string_view text);
    int handle();

    // The last value of a group, or the fallback where there is none.

    template <int code>
    double real(double fallback = 0.0) {
        return m_values.has<code>() ? real(m_values.get<code>()) : fallback;
    }
    template <int code>
    int integer(int fallback) const {
        return m_values.has<code>() ? dxfInteger(m_values.get<code>()) : fallback;
    }
    template <int code>
    std::string text(const char* fallback) const {
        return m_values.has<code>() ? std::string(m_values.get<code>()) : fallback;
    }

    /// The object that is read.
    DxfLastValues m_values;
    DxfListOf<DL_VertexData> m_vertices;
    DxfListOf<DL_KnotData> m_knots;
    DxfListOf<DL_ControlPointData> m_controlPoints;
    std::vector<double> m_weights;
    DxfListOf<DL_FitPointData> m_fitPoints;
    /// Whether all its numbers so far are plain.
    bool m_isPlain = true;
    bool m_hasDecoded = false;

    /// The style of the object, and the values that it was made of, of this object or of one before
    /// it with the same ones.
    Style m_style;
    DxfLastValues m_styleValues;
    bool m_isStylePlain = true;
    /// Grows with each style made.
    std::uint64_t m_styleNumber = 0;

    /// What the reader has, where nobody else sets it.
    static constexpr std::uint64_t noStyle = 0;
    bool m_setsAlone;
    std::uint64_t m_reportedStyle = noStyle;
    int m_reportedHandle = -1;

    DxfObjectKind m_kind = DxfObjectKind::Other;
    int m_handle = -1;
    double m_elevation = 0.0;
    /// What the record has, in the order of its constructor.
    std::array<double, 6> m_numbers{};
    DL_PolylineData m_polyline{0, 0, 0, 0};
    DL_SplineData m_spline{0, 0, 0, 0, 0};

    /// The vertices of a POLYLINE, and the styles that they and the POLYLINE, which has the first,
    /// have.
    std::vector<SequenceVertex> m_sequence;
    std::vector<Style> m_sequenceStyles;
};

} // namespace dxfeditor
