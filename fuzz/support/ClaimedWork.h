#pragma once

class DXFDocument;

/// About how many steps it takes to sample the drawing: a line has ten points for each unit of its
/// length, whatever the length, and a spline costs the square of its degree for each point. That is
/// what the drawing asks for, no fault, so targets pass over drawings that ask for too much.
double claimedWork(const DXFDocument& document);

/// What targets sample: a fraction of a second's work with sanitizers.
inline constexpr double mostClaimedWork = 200'000;
