#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/engine/EngineDevice.h"

namespace sweepwright {

inline constexpr std::uint64_t kMega = 1024 * 1024;

/// A device with an engine, and what was logged since it was made.
class EngineTest : public testing::Test {
  protected:
    [[nodiscard]] std::vector<std::string> lines() const { return test::engineLines(log_); }
    [[nodiscard]] bool logged(std::string_view line) const { return log_.contains(line); }

    /// Lets what `path` is about fail with `number` in the operations given.
    void failAbout(const std::string& path, std::set<test::Operation> operations, int number) {
        d_.files.failWhere(
            [path, operations = std::move(operations)](test::Operation operation,
                                                       const std::string& about) {
                return operations.contains(operation) && about == path;
            },
            number);
    }

    test::EngineDevice d_;
    platform::LogCapture log_;
};

}  // namespace sweepwright
