#include "converters/PathReader.h"

#include "converters/detail/drawing/DrawingInput.h"
#include "converters/detail/drawing/PathDecoder.h"
#include "converters/detail/drawing/Refusal.h"

#include <functional>
#include <optional>
#include <utility>

namespace converters {

using drawing::PathDecoder;
using drawing::Refusal;
using input::ByteWindow;

namespace {

/// Leaves the memory for others.
void clear(PathContours& contours) {
    contours.points.clear();
    contours.contours.clear();
    contours.pieces.clear();
    contours.arcs.clear();
    contours.ellipticArcs.clear();
    contours.splines.clear();
    contours.entities.clear();
}

} // namespace

class PathReader::State {
public:
    State(std::function<ByteWindow()> openWindow, const PathOptions& options)
        : m_openWindow(std::move(openWindow)), m_options(options) {}

    ReadResult open() {
        if (m_decoder) {
            return m_result;
        }
        const auto openWindow = std::exchange(m_openWindow, nullptr);
        return run([&] { m_decoder.emplace(openWindow(), m_options); });
    }

    ReadResult read(PathContours& contours, std::size_t points) {
        clear(contours);
        // The caller's are empty when the work ends with an exception.
        PathContours read = std::move(contours);
        const ReadResult result = runOpened([&] { m_decoder->write(read, points); });
        if (result) {
            contours = std::move(read);
        }
        return result;
    }

    ReadResult countPoints(std::uint64_t& points) {
        points = 0;
        return runOpened([&] { points = m_decoder->countPoints(); });
    }

    const PathReport& report() const { return m_decoder ? m_decoder->report() : m_noReport; }

private:
    template <typename Work>
    ReadResult runOpened(Work work) {
        if (m_result && !m_decoder) {
            return {false, "the drawing was not opened", 0};
        }
        return run(work);
    }

    /// Runs a part of the work; its first failure stays.
    template <typename Work>
    ReadResult run(Work work) {
        if (m_result) {
            // Stays when the work ends with an exception that is not ours.
            m_result = {false, "reading was interrupted", 0};
            try {
                work();
                m_result = {true, {}, 0};
            } catch (Refusal& refusal) {
                m_result = {false, std::move(refusal.reason), refusal.line};
            }
        }
        return m_result;
    }

    std::function<ByteWindow()> m_openWindow;
    const PathOptions m_options;
    std::optional<PathDecoder> m_decoder;
    ReadResult m_result{true, {}, 0};
    PathReport m_noReport;
};

PathReader::PathReader(const void* bytes, std::size_t size, const PathOptions& options)
    : m_state(new State([=] { return drawing::windowOn(bytes, size); }, options)) {}

PathReader::PathReader(const std::filesystem::path& file, const PathOptions& options)
    : m_state(new State([file] { return drawing::windowOn(file); }, options)) {}

PathReader::PathReader(ByteSource source, const PathOptions& options, std::uint64_t size)
    : m_state(
          new State([source = std::move(source), size] { return drawing::windowOn(source, size); },
                    options)) {}

PathReader::~PathReader() = default;
PathReader::PathReader(PathReader&& other) noexcept = default;
PathReader& PathReader::operator=(PathReader&& other) noexcept = default;

ReadResult PathReader::open() {
    return m_state->open();
}

const PathReport& PathReader::report() const {
    return m_state->report();
}

ReadResult PathReader::read(PathContours& contours, std::size_t points) {
    return m_state->read(contours, points);
}

ReadResult PathReader::countPoints(std::uint64_t& points) {
    return m_state->countPoints(points);
}

} // namespace converters
