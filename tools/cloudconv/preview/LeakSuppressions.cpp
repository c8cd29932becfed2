// For builds with the address sanitizer, whose leak check ends the program with a report.
// The sanitizer finds these functions by name, from outside of the program.

// NOLINTBEGIN(bugprone-reserved-identifier)

// Fontconfig keeps its fonts to the end, behind pointers that the check cannot follow.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}

extern "C" __attribute__((visibility("default"))) const char* __lsan_default_options() {
    return "print_suppressions=0";
}

// NOLINTEND(bugprone-reserved-identifier)
