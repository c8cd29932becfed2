#pragma once

#include "converters/detail/drawing/Progress.h"
#include "converters/detail/drawing/dxf/EntityNames.h"
#include "converters/detail/drawing/dxf/Numbers.h"
#include "converters/detail/input/ByteWindow.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace converters::drawing {

/// Goes through the objects of a file: each one a group with code 0 that names it, then others.
///
/// Who reads an object begins on its first group, and leaves the groups on the first group of the
/// next object, with beginObject() called there.
///
/// @tparam Groups  TextGroups or BinaryGroups
template <typename Groups>
class ObjectReader {
public:
    ObjectReader(input::ByteWindow window, const Progress& progress)
        : m_groups(std::move(window)), m_progress(progress) {}

    Groups& groups() { return m_groups; }
    const Groups& groups() const { return m_groups; }

    /// Goes to the next group.
    /// @return false at the first one of the next object, and at the end of the file
    bool nextGroup() {
        m_hasObject = m_groups.next();
        return m_hasObject && m_groups.code() != 0;
    }

    /// Takes the name of the object that the groups are on, if they are on any.
    void beginObject() {
        if (!m_hasObject) {
            return;
        }
        m_name = m_groups.text();
        m_kind = objectKindOf(m_name);
        constexpr std::uint64_t objectsPerReport = 1 << 13;
        if (++m_objects % objectsPerReport == 0) {
            reportProgress();
        }
    }

    void skipObject() {
        while (nextGroup()) {
        }
        beginObject();
    }

    /// Whether there is an object, not the end of the file; its name and kind.
    bool hasObject() const { return m_hasObject; }
    const std::string& name() const { return m_name; }
    ObjectKind kind() const { return m_kind; }

    /// Whether there is an object that does not end the section.
    bool isInSection() const {
        return m_hasObject && m_kind != ObjectKind::section && m_kind != ObjectKind::endOfSection &&
               m_kind != ObjectKind::endOfFile;
    }

    /// The value of the group, without blanks around it.
    std::string_view trimmedText() { return withoutBlanks(m_groups.text()); }

private:
    void reportProgress() const {
        const std::uint64_t size = m_groups.size();
        const auto position = static_cast<double>(m_groups.position());
        m_progress.report(size == 0 ? 0 : std::min(1.0, position / static_cast<double>(size)));
    }

    Groups m_groups;
    const Progress& m_progress;
    bool m_hasObject = true;
    std::string m_name;
    ObjectKind m_kind = ObjectKind::other;
    std::uint64_t m_objects = 0;
};

} // namespace converters::drawing
