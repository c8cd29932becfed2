#include "converters/DrawingPath.h"
namespace converters {
const char* nameOf(PathEntityKind kind) {
    static const char* const n[] = {"POINT",   "LINE",       "ARC",      "CIRCLE",
                                    "ELLIPSE", "LWPOLYLINE", "POLYLINE", "SPLINE"};
    return n[static_cast<int>(kind)];
}
const char* nameOf(LeftOutReason reason) {
    static const char* const n[] = {"annotation",
                                    "a mesh",
                                    "infinite",
                                    "of a kind that is not known",
                                    "on a layer that is off",
                                    "on a layer that is frozen",
                                    "invisible",
                                    "in paper space",
                                    "on a layer that was not asked for",
                                    "its block is missing",
                                    "its block is another file",
                                    "its block holds itself",
                                    "drawn unclipped",
                                    "broken"};
    return n[static_cast<int>(reason)];
}
} // namespace converters
