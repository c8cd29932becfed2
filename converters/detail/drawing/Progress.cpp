#include "converters/detail/drawing/Progress.h"

#include "converters/detail/drawing/Refusal.h"

namespace converters::drawing {

void Progress::report(double done) const {
    if (m_callback && !m_callback(m_begin + done * (m_end - m_begin))) {
        throw Refusal{"stopped by the caller"};
    }
}

} // namespace converters::drawing
