#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Numbers and pieces of files in messages for people.
namespace converters::scan {

/// A count with commas between its thousands: "1,203".
std::string grouped(std::uint64_t count);

/// A piece of a file in quotes; cut when it is long, with bytes that no terminal shows as "\x1f".
std::string inQuotes(std::string_view text);

/// A number in a few digits: "0.25", "1.2e+30".
std::string shortly(double value);

} // namespace converters::scan
