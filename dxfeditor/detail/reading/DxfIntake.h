#pragma once

#include "dxfeditor/detail/reading/DxfCountedList.h"
#include "dxfeditor/detail/reading/DxfGroupSet.h"
#include "dxfeditor/text/DxfObjects.h"

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace dxfeditor {

/// Rewrites a DXF text, object by object, into one that dxflib reads safely and that says the same
/// to a reader of the drawing model.
///
/// - Objects that the model does not take are dropped. One object of a kind that dxflib does not
///   know stands in the place of a run of them, so that what is before still ends there.
/// - Of the other objects the groups stay that dxflib makes records of. Comments, extended data and
///   the rest go; lines are cut to what dxflib can hold.
/// - Vertices stay directly behind their POLYLINE, and are dropped anywhere else: dxflib would end
///   the entity before them once more. Behind a POLYLINE without any comes one face record, which
///   for dxflib ends the polyline and says nothing else.
/// - An LWPOLYLINE and a SPLINE begin with their counts, see DxfCountedList.
/// - A blank where a real number belongs becomes 0, like any other text that is no number; dxflib
///   would use a number that was never set.
///
/// Nothing else is repaired. So the last object of a text is not reported when nothing begins after
/// it, and the zeros stay that dxflib gives a spline whose counts promise more than it has.
class DxfIntake {
public:
    /// @param text  the whole text that the objects come from; its size bounds what counts may
    ///              promise
    explicit DxfIntake(std::string_view text);

    /// Appends the object to the output, or drops it.
    void append(const DxfObject& object);

    /// Ends the output so that dxflib reports all objects in it. To be called at the end of the
    /// text; also between objects, where canBeClosed().
    void close();

    /// Whether the output may be closed, given to dxflib and cleared now: not inside a polyline,
    /// which must reach dxflib in one piece.
    bool canBeClosed() const { return m_polyline == Polyline::None; }

    /// The text for dxflib.
    std::string& output() { return m_output; }

    /// Forgets the output, keeping its memory.
    void clearOutput() { m_output.clear(); }

private:
    /// The POLYLINE that the output is in.
    enum class Polyline {
        None,
        WithoutVertices,
        WithVertices,
        /// The text ends in a vertex that dxflib does not report, so it does not end the polyline.
        CutShort,
    };

    void appendVertex(const DxfObject& vertex);
    void endPolyline();
    /// Begins an object behind what was dropped.
    void begin(std::string_view name);
    void write(const DxfObject& object, const DxfGroupSet& taken);
    void write(const DxfObject& entity, const DxfGroupSet& taken,
               std::initializer_list<DxfCountedList> lists);
    void writeGroups(std::string_view groups, const DxfGroupSet& taken);
    void writeGroup(int code, std::string_view value);

    const char* m_textEnd;
    /// Values that counts may still promise without having them.
    std::size_t m_padding;
    std::string m_output;
    /// Objects were dropped since the last one written.
    bool m_dropped = false;
    Polyline m_polyline = Polyline::None;
    /// The groups of that POLYLINE.
    std::string_view m_polylineGroups;
};

} // namespace dxfeditor
