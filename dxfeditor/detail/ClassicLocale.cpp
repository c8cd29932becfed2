#include "dxfeditor/detail/ClassicLocale.h"

#include <clocale>
#include <locale>
#include <mutex>
#include <string>

namespace dxfeditor {

namespace {

/// What all objects that need the classic locale share.
struct Shared {
    std::mutex mutex;
    int users = 0;
    std::locale before;
    /// The C library's locale, which setting a named C++ locale changes.
    std::string cLocale;
};

Shared& shared() {
    static Shared instance;
    return instance;
}

void makeClassicGlobal(Shared& state) {
    state.cLocale = std::setlocale(LC_ALL, nullptr);
    // A facet of its own makes it a locale without a name, which the C library does not follow. It
    // is kept: a locale that cannot be made would lose it.
    static auto* const facet = new std::numpunct<char>(1);
    state.before = std::locale::global(std::locale(std::locale::classic(), facet));
}

} // namespace

ClassicLocale::ClassicLocale() : m_isNeeded(!(std::locale() == std::locale::classic())) {
    if (!m_isNeeded) {
        return;
    }
    Shared& state = shared();
    const std::lock_guard<std::mutex> lock(state.mutex);
    if (state.users == 0) {
        makeClassicGlobal(state);
    }
    ++state.users;
}

ClassicLocale::~ClassicLocale() {
    if (!m_isNeeded) {
        return;
    }
    Shared& state = shared();
    const std::lock_guard<std::mutex> lock(state.mutex);
    if (--state.users == 0) {
        std::locale::global(state.before);
        state.before = std::locale::classic();
        // Succeeds: it was set before.
        static_cast<void>(std::setlocale(LC_ALL, state.cLocale.c_str()));
    }
}

} // namespace dxfeditor
