#pragma once

/// Marks what libconverters exports; everything else in it is hidden.
#define CONVERTERS_EXPORT __attribute__((visibility("default")))
