#include "converters/ScanReader.h"

#include "converters/detail/input/FileSource.h"
#include "converters/detail/scan/Decoder.h"
#include "converters/detail/scan/Fault.h"

#include <optional>
#include <utility>

namespace converters {

using scan::Decoder;
using scan::Fault;
using scan::Target;

class ScanReader::State {
public:
    State(std::function<input::ByteWindow()> openWindow, const ScanOptions& options)
        : m_openWindow(std::move(openWindow)), m_options(options) {}

    ReadResult open() {
        return run([this] {
            m_decoder.emplace(m_openWindow(), m_options);
            m_decoder->open();
        });
    }

    ReadResult read(Target target, unsigned char* to, std::size_t most, std::size_t& count) {
        count = 0;
        std::size_t done = 0;
        ReadResult result = run([&] {
            if (!m_hasTarget) {
                m_decoder->chooseTarget(target);
                m_hasTarget = true;
            }
            done = m_decoder->read(to, most);
        });
        count = result ? done : 0;
        return result;
    }

    const ScanReport& report() const { return m_decoder ? m_decoder->report() : m_noReport; }
    const ScanLayout& layout() const { return m_decoder ? m_decoder->layout() : m_noLayout; }

private:
    /// Runs a part of the work; its first failure stays.
    template <typename Work>
    ReadResult run(Work work) {
        if (m_result) {
            // Stays when the work ends with an exception that is not ours.
            m_result = {false, "reading was interrupted", 0};
            try {
                work();
                m_result = {true, {}, 0};
            } catch (const Fault& fault) {
                m_result = fault.result;
            }
        }
        return m_result;
    }

    std::function<input::ByteWindow()> m_openWindow;
    ScanOptions m_options;
    std::optional<Decoder> m_decoder;
    bool m_hasTarget = false;
    ReadResult m_result{true, {}, 0};
    ScanReport m_noReport;
    ScanLayout m_noLayout;
};

ScanReader::ScanReader(const void* bytes, std::size_t size, const ScanOptions& options)
    : m_state(new State([=] { return input::ByteWindow(bytes, size); }, options)) {}

ScanReader::ScanReader(const std::filesystem::path& file, const ScanOptions& options)
    : m_state(new State([file] { return input::openFile(file, scan::refuse); }, options)) {}

ScanReader::ScanReader(ByteSource source, const ScanOptions& options, std::uint64_t size)
    : m_state(
          new State([source = std::move(source), size] { return input::ByteWindow(source, size); },
                    options)) {}

ScanReader::~ScanReader() = default;
ScanReader::ScanReader(ScanReader&& other) noexcept = default;
ScanReader& ScanReader::operator=(ScanReader&& other) noexcept = default;

ReadResult ScanReader::open() {
    return m_state->open();
}

const ScanReport& ScanReader::report() const {
    return m_state->report();
}

const ScanLayout& ScanReader::layout() const {
    return m_state->layout();
}

ReadResult ScanReader::read(void* records, std::size_t most, std::size_t& count) {
    return m_state->read(Target::records, static_cast<unsigned char*>(records), most, count);
}

ReadResult ScanReader::read(pcl::PointXYZI* points, std::size_t most, std::size_t& count) {
    return m_state->read(Target::points, reinterpret_cast<unsigned char*>(points), most, count);
}

} // namespace converters
