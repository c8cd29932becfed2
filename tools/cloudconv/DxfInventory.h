#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

/// What a DXF text says beside its entities, and which of its entities the library passes over.
struct DxfInventory {
    /// As the file names it, such as "AC1015"; empty when it does not.
    std::string version;
    /// What a drawing unit is, such as "mm"; empty when the file does not say.
    std::string unit;
    /// Entities by their names in the file: those that are read, those whose kind is not, and those
    /// of any kind that are not read because they belong to a block.
    std::map<std::string, std::size_t> read;
    std::map<std::string, std::size_t> ignored;
    std::map<std::string, std::size_t> inBlocks;
};

/// Takes stock of a DXF text.
DxfInventory inventoryOf(std::string_view text);
