#pragma once

/// Marks what libconverters exports; everything else in it is hidden.
#define CONVERTERS_EXPORT __attribute__((visibility("default")))

/// Marks private members of what is exported that no template in a public header calls.
#define CONVERTERS_HIDDEN __attribute__((visibility("hidden")))
