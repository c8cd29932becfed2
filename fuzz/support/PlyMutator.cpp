// Mutates PLY files by the lines of their header and the bytes of their body, and now and then
// makes the declared number of vertices that of the body, which few mutations would hit.
#include "fuzz/support/Lines.h"
#include "fuzz/support/Mutation.h"

#include <algorithm>
#include <string>

namespace {

const char* const headerLines[] = {"format ascii 1.0",
                                   "format binary_little_endian 1.0",
                                   "format binary_big_endian 1.0",
                                   "element vertex 2",
                                   "element vertex 0",
                                   "element vertex 4294967297",
                                   "element vertex 18446744073709551615",
                                   "element face 1",
                                   "property float x",
                                   "property float y",
                                   "property float z",
                                   "property float intensity",
                                   "property double x",
                                   "property double64 z",
                                   "property float32 intensity",
                                   "property uchar red",
                                   "property uint8 x",
                                   "property char a",
                                   "property short b",
                                   "property ushort c",
                                   "property int d",
                                   "property uint e",
                                   "property list uchar int vertex_index",
                                   "property list char uchar a",
                                   "property list float short b",
                                   "property float64 y",
                                   "property int64 z",
                                   "element vertex 1",
                                   "element edge 2",
                                   "obj_info num_cols 2",
                                   "obj_info num_rows 1",
                                   "obj_info num_cols -1",
                                   "obj_info num_rows 2147483648",
                                   "obj_info num_cols x",
                                   "comment made by hand",
                                   "",
                                   "end_header"};

const char* const valueLines[] = {"1 2 3 4",       "nan -nan inf -inf", "1e39 -1e39 1e-50 0",
                                  "0.5 +1 -0 .5",  "1.5.5 x 1e 0x10",   "255 256 -129 65536",
                                  "  1\t2 \r 3 4", "4294967296 -1 1 1", "infinity a b c"};

constexpr const char* endOfHeader = "end_header\n";

std::size_t recordSize(const std::vector<std::string>& header) {
    std::size_t size = 0;
    for (const std::string& line : header) {
        const auto declares = [&](const char* type) {
            return line.rfind(std::string("property ") + type, 0) == 0;
        };
        if (declares("double")) {
            size += 8;
        } else if (declares("float") || declares("int") || declares("uint ")) {
            size += 4;
        } else if (declares("short") || declares("ushort")) {
            size += 2;
        } else if (declares("char") || declares("uchar") || declares("uint8")) {
            size += 1;
        }
    }
    return size;
}

/// Declares as many vertices as the body has.
void settle(std::vector<std::string>& header, const std::string& body) {
    const bool isAscii =
        std::find(header.begin(), header.end(), "format ascii 1.0") != header.end();
    const std::size_t size = recordSize(header);
    const std::size_t count =
        isAscii     ? static_cast<std::size_t>(std::count(body.begin(), body.end(), '\n'))
        : size == 0 ? 1
                    : body.size() / size;
    for (std::string& line : header) {
        if (line.rfind("element vertex", 0) == 0) {
            line = "element vertex " + std::to_string(count);
        }
    }
}

void mutateHeader(std::vector<std::string>& header, Choice& choice) {
    const std::size_t number = choice.below(header.size() + 1);
    switch (choice.below(4)) {
    case 0:
        header.insert(header.begin() + static_cast<std::ptrdiff_t>(number),
                      choice.pick(headerLines));
        break;
    case 1:
        if (number < header.size()) {
            header[number] = choice.pick(headerLines);
        }
        break;
    case 2:
        if (number < header.size()) {
            header[number] = mutatedBytes(header[number]);
        }
        break;
    default:
        rearrange(header, 1, choice);
    }
}

std::string mutatedBody(std::string body, Choice& choice) {
    if (choice.oneIn(3)) {
        const std::size_t place = body.find('\n', choice.below(body.size() + 1));
        return body.insert(place == std::string::npos ? 0 : place + 1,
                           std::string(choice.pick(valueLines)) + "\n");
    }
    return mutatedBytes(std::move(body));
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    Choice choice(seed);
    const std::string_view file(reinterpret_cast<const char*>(data), size);
    const std::size_t end = file.find(endOfHeader);
    if (end == std::string_view::npos || choice.oneIn(8)) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    const std::size_t bodyStart = end + std::strlen(endOfHeader);
    std::vector<std::string> header = linesOf(file.substr(0, bodyStart));
    std::string body(file.substr(bodyStart));
    for (std::size_t changes = 1 + choice.below(3); changes > 0; --changes) {
        if (choice.oneIn(2)) {
            mutateHeader(header, choice);
        } else {
            body = mutatedBody(std::move(body), choice);
        }
    }
    if (choice.oneIn(2)) {
        settle(header, body);
    }
    std::string text;
    for (const std::string& line : header) {
        text += line + (choice.oneIn(100) ? "\r\n" : "\n");
    }
    return store(text + body, data, maxSize);
}
