#pragma once

#include <locale>

/// Makes the global C++ locale one with a comma as decimal point and grouped digits while it
/// lives: 1009.5 reads "1.009,5" (and "1.0.0.9,5" with `groupSize` 1).
class CommaLocale {
public:
    explicit CommaLocale(char groupSize = 3)
        : m_previous(std::locale::global(
              std::locale(std::locale::classic(), new Punctuation(groupSize)))) {}
    ~CommaLocale() { std::locale::global(m_previous); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

private:
    class Punctuation : public std::numpunct<char> {
    public:
        explicit Punctuation(char groupSize) : m_grouping(1, groupSize) {}

    protected:
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return m_grouping; }

    private:
        std::string m_grouping;
    };

    std::locale m_previous;
};
