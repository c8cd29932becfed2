#include "dxfeditor/detail/ClassicLocale.h"

#include <clocale>

namespace dxfeditor {

ClassicLocale::ClassicLocale() {
    if (m_before == std::locale::classic()) {
        return;
    }
    m_cLocale = std::setlocale(LC_ALL, nullptr);
    // A facet of its own makes it a locale without a name, which the C library does not follow. It
    // is kept: a locale that cannot be made would lose it.
    static auto* const facet = new std::numpunct<char>(1);
    std::locale::global(std::locale(std::locale::classic(), facet));
}

ClassicLocale::~ClassicLocale() {
    if (m_before == std::locale::classic()) {
        return;
    }
    std::locale::global(m_before);
    // Succeeds: it was set before.
    static_cast<void>(std::setlocale(LC_ALL, m_cLocale.c_str()));
}

} // namespace dxfeditor
