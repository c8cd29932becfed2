#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The groups of a DXF text: `dxf("0 LINE  8 walls  10 1.5")` is three of them, with two blanks
/// between groups and one behind a code. A group without value has one blank, too: "0 LINE  8   10
/// 1".
std::string dxf(std::string_view text);

/// The same of groups that are made one by one, or have blanks of their own: codes and values in
/// turn.
std::string dxfOfLines(const std::vector<std::string>& lines);

/// A section with these groups.
std::string section(std::string_view name, std::string_view text);

/// A drawing of an ENTITIES section with these groups and an end mark, behind other sections.
std::string drawingOf(std::string_view entities, const std::string& before = "");

/// The groups of a layer of a table; `flags` 1 for frozen, a negative colour for off.
std::string layerGroups(std::string_view name, int flags, int colour);

/// A TABLES section with these layers.
std::string layerTable(std::string_view layers);

/// The same groups as binary DXF, with codes of two bytes or, for R12, of one.
enum class BinaryForm { longCodes, shortCodes };
std::string binary(std::string_view text, BinaryForm form = BinaryForm::longCodes);
