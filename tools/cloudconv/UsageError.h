#pragma once

#include <stdexcept>

/// A command line that the parser takes but that makes no sense.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};
