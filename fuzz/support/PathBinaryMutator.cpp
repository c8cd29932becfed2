// Mutates binary DXF files group by group: takes them apart into codes and values, and writes them
// with codes of two bytes or, as old releases do, of one.
#include "fuzz/support/PathGroups.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr std::size_t markSize = 22;

enum class Value { text, real, int16, int32, int64, byte, chunk };

Value valueOf(int code) {
    const auto in = [code](int first, int last) { return code >= first && code <= last; };
    if (in(10, 59) || in(110, 149) || in(210, 239) || in(460, 469) || in(1010, 1059)) {
        return Value::real;
    }
    if (in(60, 79) || in(170, 179) || in(270, 289) || in(370, 389) || in(400, 409) ||
        in(1060, 1070)) {
        return Value::int16;
    }
    if (in(90, 99) || in(420, 429) || in(440, 459) || code == 1071) {
        return Value::int32;
    }
    if (in(160, 169)) {
        return Value::int64;
    }
    if (in(290, 299)) {
        return Value::byte;
    }
    return in(310, 319) || code == 1004 ? Value::chunk : Value::text;
}

/// Takes values off the front of the bytes; zeros where they end.
class Taker {
public:
    explicit Taker(std::string_view bytes) : m_bytes(bytes) {}

    template <typename Number>
    Number number() {
        Number number{};
        const std::size_t size = std::min(sizeof number, m_bytes.size());
        std::memcpy(&number, m_bytes.data(), size);
        m_bytes.remove_prefix(size);
        return number;
    }

    std::string text(std::size_t size) {
        const std::string result(m_bytes.substr(0, size));
        m_bytes.remove_prefix(result.size());
        return result;
    }

    std::string terminated() {
        const std::string result = text(m_bytes.find('\0'));
        text(1);
        return result;
    }

    bool isEmpty() const { return m_bytes.empty(); }

private:
    std::string_view m_bytes;
};

std::string valueAt(Taker& taker, int code) {
    switch (valueOf(code)) {
    case Value::real: {
        char text[40];
        std::snprintf(text, sizeof text, "%.17g", taker.number<double>());
        return text;
    }
    case Value::int16:
        return std::to_string(taker.number<std::int16_t>());
    case Value::int32:
        return std::to_string(taker.number<std::int32_t>());
    case Value::int64:
        return std::to_string(taker.number<std::int64_t>());
    case Value::byte:
        return std::to_string(taker.number<std::int8_t>());
    case Value::chunk:
        return taker.text(taker.number<std::uint8_t>());
    default:
        return taker.terminated();
    }
}

PathGroups groupsIn(std::string_view bytes) {
    Taker taker(bytes.substr(std::min(markSize, bytes.size())));
    // The first group's code is 0, of two bytes or of one.
    const bool isShort = bytes.size() > markSize + 1 && bytes[markSize + 1] != 0;
    PathGroups groups;
    while (!taker.isEmpty()) {
        int code = isShort ? taker.number<std::uint8_t>() : taker.number<std::int16_t>();
        code = isShort && code == 255 ? taker.number<std::int16_t>() : code;
        std::string value = valueAt(taker, code);
        groups.emplace_back(std::to_string(code), std::move(value));
    }
    return groups;
}

template <typename Number>
void put(std::string& bytes, Number number) {
    char raw[sizeof number];
    std::memcpy(raw, &number, sizeof number);
    bytes.append(raw, sizeof number);
}

void putValue(std::string& bytes, int code, const std::string& value) {
    const long long integer = std::strtoll(value.c_str(), nullptr, 10);
    switch (valueOf(code)) {
    case Value::real:
        return put(bytes, std::strtod(value.c_str(), nullptr));
    case Value::int16:
        return put(bytes, static_cast<std::int16_t>(integer));
    case Value::int32:
        return put(bytes, static_cast<std::int32_t>(integer));
    case Value::int64:
        return put(bytes, integer);
    case Value::byte:
        return put(bytes, static_cast<std::int8_t>(integer));
    case Value::chunk:
        put(bytes, static_cast<std::uint8_t>(std::min<std::size_t>(value.size(), 255)));
        bytes += value.substr(0, 255);
        return;
    default:
        bytes += value;
        bytes += '\0';
    }
}

std::string binaryOf(const PathGroups& groups, bool isShort) {
    std::string bytes("AutoCAD Binary DXF\r\n\x1a", markSize);
    for (const auto& [codeText, value] : groups) {
        const auto code = static_cast<std::int16_t>(std::strtol(codeText.c_str(), nullptr, 10));
        if (!isShort) {
            put(bytes, code);
        } else if (code >= 0 && code < 255) {
            put(bytes, static_cast<std::uint8_t>(code));
        } else {
            put(bytes, std::uint8_t{255});
            put(bytes, code);
        }
        putValue(bytes, code, value);
    }
    return bytes;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    Choice choice(seed);
    if (choice.oneIn(4)) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const bool wasShort = size > markSize + 1 && bytes[markSize + 1] != 0;
    PathGroups groups = groupsIn(bytes);
    for (std::size_t changes = 1 + choice.below(4); changes > 0; --changes) {
        mutatePathGroups(groups, choice);
    }
    return store(binaryOf(groups, choice.oneIn(10) ? !wasShort : wasShort), data, maxSize);
}
