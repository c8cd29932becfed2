#include "converters/detail/PlyHeaderLine.h"

#include "converters/detail/NumberExtraction.h"
#include "converters/detail/PlyLines.h"

namespace converters::detail {

bool PlyHeaderLine::isGood() {
    hasFailed_ = hasFailed_ || isAtEnd_;
    return !hasFailed_;
}

void PlyHeaderLine::skipBlanks() {
    if (!isGood()) {
        return;
    }
    while (!rest_.empty() && isBlank(rest_.front())) {
        rest_.remove_prefix(1);
    }
    isAtEnd_ = rest_.empty();
}

bool PlyHeaderLine::separator() {
    if (!isGood()) {
        return false;
    }
    if (rest_.empty()) {
        hasFailed_ = isAtEnd_ = true;
        return false;
    }
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return isBlank(c);
}

std::string_view PlyHeaderLine::word() {
    if (!isGood()) {
        return {};
    }
    std::size_t length = 0;
    while (length < rest_.size() && !isBlank(rest_[length])) {
        ++length;
    }
    const std::string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(length);
    isAtEnd_ = rest_.empty();
    hasFailed_ = taken.empty();
    return taken;
}

std::uint64_t PlyHeaderLine::count() {
    std::uint64_t value = 0;
    if (isGood()) {
        const char* position = rest_.data();
        const char* const end = position + rest_.size();
        hasFailed_ = !extractNumber(position, end, value);
        rest_.remove_prefix(static_cast<std::size_t>(position - rest_.data()));
        isAtEnd_ = rest_.empty();
    }
    return value;
}

} // namespace converters::detail
