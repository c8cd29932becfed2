#pragma once

#include "dxfeditor/Export.h"

#include <string>

/// A line type of a drawing, known by its name.
class DXFEDITOR_EXPORT DXFLineType {
public:
    /// @param flags          line type flags
    /// @param patternLength  total length of the pattern, in drawing units
    /// @param pattern        the dash lengths, `numberOfDashes` of them. Kept as given, neither
    ///                       copied nor freed: it must live as long as the line type is used. May
    ///                       be null.
    DXFLineType(const std::string& name, const std::string& description, int flags,
                int numberOfDashes, double patternLength, double* pattern);

    std::string name() const { return m_name; }
    std::string description() const { return m_description; }
    int flags() const { return m_flags; }
    int numberOfDashes() const { return m_numberOfDashes; }
    double patternLength() const { return m_patternLength; }
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
