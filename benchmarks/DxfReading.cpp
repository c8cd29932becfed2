// fromDxf beside dxflib's parser that reports to nobody: dxflib only parses. An ordinary drawing is
// little to parse and much to sample, so there our reader is measured, with the document that it
// fills, without the sampling.
//
// The limit for POINTs is one pass over their lines that does nothing but find the ends of the
// lines and convert the numbers.

#include "benchmarks/Inputs.h"
#include "converters/Converters.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFReader.h"
#include "tests/support/SampleDrawings.h"

#include <dxflib/dl_creationadapter.h>
#include <dxflib/dl_dxf.h>

#include <charconv>
#include <cstring>
#include <istream>
#include <memory>
#include <streambuf>
#include <string_view>

namespace {

const std::vector<char>& ordinary() {
    static const std::string text = ordinaryDrawing();
    static const std::vector<char> bytes(text.begin(), text.end());
    return bytes;
}

/// Reads bytes in place.
class BytesBuffer : public std::streambuf {
public:
    explicit BytesBuffer(std::vector<char>& bytes) {
        setg(bytes.data(), bytes.data(), bytes.data() + bytes.size());
    }
};

void parseWithDxflib(benchmark::State& state, std::vector<char> drawing) {
    for (auto _ : state) {
        BytesBuffer buffer(drawing);
        std::istream stream(&buffer);
        DL_CreationAdapter nobody;
        if (!DL_Dxf().in(stream, &nobody)) {
            state.SkipWithError("not read");
        }
    }
}

void points(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const std::vector<char>& drawing = pointDrawingOf(size);
    for (auto _ : state) {
        std::vector<cv::Point3_<double>> walk;
        if (!converters::fromDxf(drawing, walk) || walk.size() != size) {
            state.SkipWithError("not read");
        }
        benchmark::DoNotOptimize(walk.data());
    }
}

void pointsWithDxflib(benchmark::State& state) {
    parseWithDxflib(state, pointDrawingOf(static_cast<std::size_t>(state.range(0))));
}

/// Walks over code and value lines, and converts the coordinates of each point.
class OnePass {
public:
    explicit OnePass(const std::vector<char>& text)
        : m_next(text.data()), m_end(text.data() + text.size()) {}

    std::vector<cv::Point3_<double>> points() {
        std::vector<cv::Point3_<double>> points;
        cv::Point3_<double> point;
        while (m_next != m_end) {
            const std::string_view code = line();
            const std::string_view value = line();
            if (code == " 10") {
                point.x = number(value);
            } else if (code == " 20") {
                point.y = number(value);
            } else if (code == " 30") {
                point.z = number(value);
                points.push_back(point);
            }
        }
        return points;
    }

private:
    std::string_view line() {
        const char* const begin = m_next;
        const void* const found = std::memchr(begin, '\n', static_cast<std::size_t>(m_end - begin));
        const char* const lineEnd = found == nullptr ? m_end : static_cast<const char*>(found);
        m_next = found == nullptr ? m_end : lineEnd + 1;
        return {begin, static_cast<std::size_t>(lineEnd - begin)};
    }

    static double number(std::string_view text) {
        double value = 0.0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        return value;
    }

    const char* m_next;
    const char* m_end;
};

void pointsInOnePass(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const std::vector<char>& drawing = pointDrawingOf(size);
    for (auto _ : state) {
        const std::vector<cv::Point3_<double>> points = OnePass(drawing).points();
        if (points.size() != size) {
            state.SkipWithError("not read");
        }
        benchmark::DoNotOptimize(points.data());
    }
}

void lines(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const std::vector<char>& drawing = lineDrawingOf(size);
    for (auto _ : state) {
        std::vector<cv::Point3_<double>> walk;
        if (!converters::fromDxf(drawing, walk) || walk.size() != 11 * size) {
            state.SkipWithError("not read");
        }
        benchmark::DoNotOptimize(walk.data());
    }
}

void linesWithDxflib(benchmark::State& state) {
    parseWithDxflib(state, lineDrawingOf(static_cast<std::size_t>(state.range(0))));
}

void linesFreed(benchmark::State& state) {
    const std::vector<char>& drawing = lineDrawingOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto document = std::make_unique<DXFDocument>();
        if (!DXFReader(*document).load(drawing.data(), drawing.size())) {
            state.SkipWithError("not read");
        }
        state.ResumeTiming();
        document.reset();
    }
}

void ordinaryToDocument(benchmark::State& state) {
    for (auto _ : state) {
        DXFDocument document;
        if (!DXFReader(document).load(ordinary().data(), ordinary().size())) {
            state.SkipWithError("not read");
        }
    }
}

void ordinaryWithDxflib(benchmark::State& state) {
    parseWithDxflib(state, ordinary());
}

BENCHMARK(points)->Name("fromDxf")->Apply(allSizes);
BENCHMARK(pointsWithDxflib)->Name("fromDxf-dxflib")->Apply(allSizes);
BENCHMARK(pointsInOnePass)->Name("fromDxf-pass")->Apply(allSizes);
BENCHMARK(lines)->Name("fromDxfLines")->Unit(benchmark::kMillisecond)->Arg(100000);
BENCHMARK(linesWithDxflib)->Name("fromDxfLines-dxflib")->Unit(benchmark::kMillisecond)->Arg(100000);
BENCHMARK(linesFreed)->Name("freeLines")->Unit(benchmark::kMillisecond)->Arg(100000);
BENCHMARK(ordinaryToDocument)->Name("readOrdinary")->Unit(benchmark::kMillisecond);
BENCHMARK(ordinaryWithDxflib)->Name("readOrdinary-dxflib")->Unit(benchmark::kMillisecond);

} // namespace
