#pragma once

#include "fuzz/support/Lines.h"
#include "fuzz/support/Mutation.h"

#include <string>
#include <utility>
#include <vector>

/// The groups of a drawing, code and value, that the mutators of texts and of binary files change.
using PathGroups = std::vector<std::pair<std::string, std::string>>;

/// Changes some groups: puts in whole entities, blocks or groups, other codes and values, repeats,
/// removes and moves.
void mutatePathGroups(PathGroups& groups, Choice& choice);

/// The groups of a text of lines.
PathGroups pathGroupsOf(std::string_view text);
