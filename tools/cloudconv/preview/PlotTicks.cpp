#include "tools/cloudconv/preview/PlotTicks.h"

#include <array>
#include <cstdio>

namespace {

/// A distance between marks: `factor` times ten to the `exponent`.
struct Step {
    double factor;
    int exponent;

    /// The `count`-th multiple. Divides where it can: 3 / 10 is nearer to 0.3 than 3 * 0.1.
    double times(double count) const {
        return exponent < 0 ? count * factor / std::pow(10.0, -exponent)
                            : count * factor * std::pow(10.0, exponent);
    }
};

int exponentOf(double number) {
    return static_cast<int>(std::floor(std::log10(number)));
}

/// The smallest step that is no smaller than this.
Step roundStep(double least) {
    constexpr double rounding = 1e-9;
    const int exponent = exponentOf(least);
    for (const double factor : {1.0, 2.0, 5.0}) {
        const Step step = {factor, exponent};
        if (step.times(1.0) >= least * (1 - rounding)) {
            return step;
        }
    }
    return {1.0, exponent + 1};
}

std::string formatted(const char* format, int precision, double number) {
    std::array<char, 64> text = {};
    static_cast<void>(std::snprintf(text.data(), text.size(), format, precision, number));
    return text.data();
}

/// The labels of one axis: all with the same number of decimals.
class Labels {
public:
    Labels(const Interval& shown, double origin, const Step& step) : m_step(step.times(1.0)) {
        constexpr double tooLong = 1e6;
        constexpr int mostDecimals = 5;
        const double largest =
            std::max(std::abs(shown.low - origin), std::abs(shown.high - origin));
        const bool plain = largest < tooLong && -step.exponent <= mostDecimals;
        m_format = plain ? "%.*f" : "%.*g";
        m_precision = plain ? std::max(0, -step.exponent)
                            : std::max(1, exponentOf(largest) - step.exponent + 1);
    }

    std::string of(double value) const {
        return formatted(m_format, m_precision, std::abs(value) < m_step / 2 ? 0.0 : value);
    }

private:
    double m_step;
    const char* m_format = nullptr;
    int m_precision = 0;
};

double originOf(const Interval& shown, const Step& step) {
    constexpr int mostDigits = 6;
    const double largest = std::max(std::abs(shown.low), std::abs(shown.high));
    if (exponentOf(largest) - step.exponent < mostDigits) {
        return 0.0;
    }
    const Step coarse = {1.0, exponentOf(shown.high - shown.low) + 1};
    return coarse.times(std::floor(shown.low / coarse.times(1.0)));
}

} // namespace

PlotTicks ticksOf(const Interval& shown, int most) {
    /// Marks at the very ends are wanted, whatever the last digit says.
    constexpr double rounding = 1e-9;
    const Step step = roundStep((shown.high - shown.low) / most);
    PlotTicks result;
    result.origin = originOf(shown, step);
    const Labels labels(shown, result.origin, step);
    const double first = std::ceil((shown.low - result.origin) / step.times(1.0) - rounding);
    const double last = std::floor((shown.high - result.origin) / step.times(1.0) + rounding);
    for (int i = 0; i <= last - first; ++i) {
        const double value = step.times(first + i);
        result.ticks.push_back({result.origin + value, labels.of(value)});
    }
    return result;
}

std::string shortText(double number, int digits) {
    constexpr double farthest = 1e15;
    constexpr double nearest = 1e-9;
    const double size = std::abs(number);
    if (size == 0.0) {
        return "0";
    }
    if (!(size >= nearest && size < farthest)) {
        return formatted("%.*g", digits, number);
    }
    std::string text = formatted("%.*f", std::max(0, digits - 1 - exponentOf(size)), number);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') {
            text.pop_back();
        }
    }
    return text;
}
