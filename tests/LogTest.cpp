#include "tests/support/CapturedLog.h"
#include "universal_log_interface/universal_log_interface.h"

#include <gtest/gtest.h>

namespace {

TEST(Log, SwitchIsNamedVolmarEnableLog) {
    EXPECT_EQ(p7::ENABLE_LOG_ENV_VAR, "VOLMAR_ENABLE_LOG");
}

} // namespace
