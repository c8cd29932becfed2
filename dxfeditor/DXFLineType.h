#pragma once

#include "dxfeditor/Export.h"

#include <string>

/// A line type of a drawing, known by its name.
class DXFEDITOR_EXPORT DXFLineType {
public:
    /// A line type; nothing is checked.
    ///
    /// @param name           name by which drawings find the line type
    /// @param description    free text
    /// @param flags          line type flags
    /// @param numberOfDashes number of entries of the pattern
    /// @param patternLength  total length of the pattern, in drawing units
    /// @param pattern        the dash lengths, `numberOfDashes` of them. Kept as given, neither
    ///                       copied nor freed: it must live as long as the line type is used. May
    ///                       be null.
    DXFLineType(const std::string& name, const std::string& description, int flags,
                int numberOfDashes, double patternLength, double* pattern);
    /// A line type of the same values that shares the pattern.
    DXFLineType(const DXFLineType&) = default;
    /// Not assignable: a line type keeps its name, by which drawings find it.
    DXFLineType& operator=(const DXFLineType&) = delete;

    /// The line type's name; drawings tell case apart.
    std::string name() const { return m_name; }
    /// Free text.
    std::string description() const { return m_description; }
    /// Line type flags, as given.
    int flags() const { return m_flags; }
    /// Number of entries of the pattern, as given.
    int numberOfDashes() const { return m_numberOfDashes; }
    /// Total length of the pattern in drawing units, as given.
    double patternLength() const { return m_patternLength; }
    /// The pointer that the line type was made with.
    double* pattern() const { return m_pattern; }

    /// The template "[LTYPE name: %1, ...]", the same for every line type: the caller fills in the
    /// placeholders.
    std::string toString() const;

private:
    std::string m_name;
    std::string m_description;
    int m_flags;
    int m_numberOfDashes;
    double m_patternLength;
    double* m_pattern;
};
