#pragma once

#include <string>
#include <string_view>

/// The text without the blanks and line ends around it.
std::string_view trimmed(std::string_view text);

/// Why bytes are no DXF text; empty when they look like one.
///
/// For bytes in which the library found neither layers nor entities: it takes whatever it is given,
/// so a file of another kind is an empty drawing to it. An empty drawing has at least one group
/// that begins an object: code 0 and a name, behind comments or none.
std::string whyNotDxfText(std::string_view bytes);

/// What of a DXF text the library does not see, as a note for the user; empty when it sees all.
///
/// It stops at a NUL, and passes over an object that nothing follows, as in a file that was cut
/// short: a complete one ends in an EOF mark.
std::string whatIsCutOff(std::string_view bytes);
