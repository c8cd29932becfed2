#pragma once

namespace dxfeditor {

/// Makes the classic locale the process's global C++ locale while it lives, if it is not.
///
/// dxflib reads numbers through streams of its own, which take the global locale: with a decimal
/// comma it would read 1.5 as 1 or 15. There is no other way to tell it. So a program whose global
/// C++ locale is not the classic one sees the classic one in all its threads for this time, and
/// must not set another from a second thread. The C library's locale is left alone.
///
/// Objects may live in several threads at once: the last one gives the locale back. Where the
/// classic locale is global, as it is unless a program says otherwise, no lock is taken.
class ClassicLocale {
public:
    ClassicLocale();
    ~ClassicLocale();
    ClassicLocale(const ClassicLocale&) = delete;
    ClassicLocale& operator=(const ClassicLocale&) = delete;

private:
    bool m_isNeeded;
};

} // namespace dxfeditor
