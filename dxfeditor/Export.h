#pragma once

/// Marks what libconverters exports of the drawing model; everything else in it is hidden.
#define DXFEDITOR_EXPORT __attribute__((visibility("default")))
