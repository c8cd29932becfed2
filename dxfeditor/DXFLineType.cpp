#include "dxfeditor/DXFLineType.h"

DXFLineType::DXFLineType(const std::string& name, const std::string& description, int flags,
                         int numberOfDashes, double patternLength, double* pattern)
    : m_name(name), m_description(description), m_flags(flags), m_numberOfDashes(numberOfDashes),
      m_patternLength(patternLength), m_pattern(pattern) {}

std::string DXFLineType::toString() const {
    return "[LTYPE name: %1, description: %2, flags: %3, numberOfDashes: %4, patternLength: %5, "
           "pattern: %6]";
}
