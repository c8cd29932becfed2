// Mutates DXF texts group by group: a code line with its value line stays a pair.
#include "fuzz/support/PathGroups.h"

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    Choice choice(seed);
    if (choice.oneIn(6)) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    PathGroups groups = pathGroupsOf(std::string_view(reinterpret_cast<const char*>(data), size));
    for (std::size_t changes = 1 + choice.below(4); changes > 0; --changes) {
        mutatePathGroups(groups, choice);
    }
    const char* const lineEnd = choice.oneIn(20) ? "\r\n" : choice.oneIn(40) ? "\r" : "\n";
    std::string text;
    for (const auto& [code, value] : groups) {
        text += code + lineEnd + value + lineEnd;
    }
    return store(text, data, maxSize);
}
