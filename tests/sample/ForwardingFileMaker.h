#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/files/FileMaker.h"

namespace sweepwright::test {

/// Hands every call on; a test overrides one of them.
class ForwardingFileMaker : public platform::FileMaker {
  public:
    /// `target` must outlive this.
    explicit ForwardingFileMaker(platform::FileMaker& target) : target_(target) {}

    platform::Result<> createFile(const std::string& path, std::string_view content) override {
        return target_.createFile(path, content);
    }
    platform::Result<> createSparseFile(const std::string& path, std::uint64_t size) override {
        return target_.createSparseFile(path, size);
    }
    platform::Result<> createDirectories(const std::string& path) override {
        return target_.createDirectories(path);
    }
    platform::Result<> createSymbolicLink(const std::string& path,
                                          const std::string& target) override {
        return target_.createSymbolicLink(path, target);
    }
    platform::Result<> setModificationDate(const std::string& path,
                                           std::chrono::system_clock::time_point date) override {
        return target_.setModificationDate(path, date);
    }

  private:
    platform::FileMaker& target_;
};

}  // namespace sweepwright::test
