#pragma once

/// The size of a picture in pixels; in PDF in points.
struct PictureSize {
    int width = 1000;
    int height = 700;
};
