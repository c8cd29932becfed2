#include "dxfeditor/detail/reading/ClassicLocale.h"

#include <clocale>
#include <locale>
#include <memory>
#include <mutex>
#include <sstream>
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

/// The C++ library prepares what the numbers of a locale take when the first of them is read, and
/// not safely when two threads read their first at the same time.
void readANumber(const std::locale& locale) {
    std::istringstream stream("0");
    stream.exceptions(std::ios::badbit);
    stream.imbue(locale);
    double number = 1.0;
    stream >> number;
}

std::locale* makeNamelessClassic() {
    // A facet of its own makes it a locale without a name, which the C library does not follow. It
    // is kept: a locale that cannot be made would lose it.
    static auto* const facet = new std::numpunct<char>(1);
    auto locale = std::make_unique<std::locale>(std::locale::classic(), facet);
    readANumber(*locale);
    return locale.release();
}

void makeClassicGlobal(Shared& state) {
    // Never destroyed: other objects may read drawings when the process ends.
    static const std::locale* const classic = makeNamelessClassic();
    state.cLocale = std::setlocale(LC_ALL, nullptr);
    state.before = std::locale::global(*classic);
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
