#pragma once

/// Marks what libconverters exports of the drawing model; everything else in it is hidden.
#define DXFEDITOR_EXPORT __attribute__((visibility("default")))

/// Marks private members of what is exported that nobody outside the library calls.
#define DXFEDITOR_HIDDEN __attribute__((visibility("hidden")))
