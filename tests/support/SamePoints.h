#pragma once

#include <gtest/gtest.h>
#include <opencv2/core/types.hpp>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

/// Whether two coordinates are the same to the bit; all values that are not numbers count as one.
inline bool sameBits(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) {
        return std::isnan(a) && std::isnan(b);
    }
    std::uint64_t bitsA;
    std::uint64_t bitsB;
    std::memcpy(&bitsA, &a, sizeof a);
    std::memcpy(&bitsB, &b, sizeof b);
    return bitsA == bitsB;
}

/// Success when both lists hold the same points to the bit.
inline testing::AssertionResult samePoints(const std::vector<cv::Point3_<double>>& actual,
                                           const std::vector<cv::Point3_<double>>& expected) {
    if (actual.size() != expected.size()) {
        return testing::AssertionFailure()
               << actual.size() << " points instead of " << expected.size();
    }
    for (std::size_t i = 0; i < actual.size(); ++i) {
        const cv::Point3_<double>& a = actual[i];
        const cv::Point3_<double>& e = expected[i];
        if (!sameBits(a.x, e.x) || !sameBits(a.y, e.y) || !sameBits(a.z, e.z)) {
            return testing::AssertionFailure()
                   << "point " << i << " is " << testing::PrintToString(a.x) << ", "
                   << testing::PrintToString(a.y) << ", " << testing::PrintToString(a.z)
                   << " instead of " << testing::PrintToString(e.x) << ", "
                   << testing::PrintToString(e.y) << ", " << testing::PrintToString(e.z);
        }
    }
    return testing::AssertionSuccess();
}
