#pragma once

#include <cstddef>
#include <string>

class DXFDocument;

/// A drawing as CAD programs write them, about 700 KB: a header, tables, blocks, dictionaries, and
/// in the midst of hatches, texts, dimensions and inserts a few hundred lines, arcs, circles,
/// polylines and splines. Always the same.
std::string ordinaryDrawing();

/// The text of a drawing of lines in rows of a thousand. None meets another; each is of this
/// length, at most 1.
std::string lineDrawing(std::size_t lines, double length);

/// Fills an empty document with `lines` unit lines (a multiple of 100) that are the sides of
/// hundred-sided polygons far from each other; shuffled, every other one flipped, by chance.
void addShuffledContours(DXFDocument& document, std::size_t lines);

/// Fills an empty document with circles of a thousand points each.
void addCircles(DXFDocument& document, std::size_t circles);

/// Fills an empty document with cubic splines of eight control points, each of some hundred points.
void addSplines(DXFDocument& document, std::size_t splines);
