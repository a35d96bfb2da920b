#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <mutex>
#include <optional>
#include <set>
#include <string>

#include "platform/files/ForwardingFileManager.h"

namespace sweepwright::test {

/// The calls of a FileManager.
enum class Operation {
    OpenDirectory,
    OpenBeneath,
    ReadEntries,
    AttributesAt,
    RemoveFileAt,
    RemoveDirectoryAt,
    Attributes,
    IsWritable,
    FileSystemAttributes,
    ResolvedPath,
    HostPath,
    ReadFile,
    WriteFile,
    CreateDirectories,
    Rename,
    Lock,
    TryLock,
};

/// Every call that changes the disk.
inline constexpr std::initializer_list<Operation> kChangingOperations = {
    Operation::RemoveFileAt, Operation::RemoveDirectoryAt,
    Operation::WriteFile,    Operation::CreateDirectories,
    Operation::Rename,       Operation::Lock,
    Operation::TryLock};

/// Every call there is.
const std::set<Operation>& everyOperation();

/// Counts the calls to a chosen set of operations, from 1, and lets the n-th of them fail or end
/// the process. Calls to other operations are forwarded uncounted. Thread-safe; set it up before
/// it is used.
class FaultyFileManager final : public platform::ForwardingFileManager {
  public:
    /// `target` must outlive this.
    FaultyFileManager(platform::FileManager& target, std::set<Operation> watched)
        : ForwardingFileManager(target), watched_(std::move(watched)) {}

    /// The n-th watched call fails with errno value `number` and is not forwarded.
    void failAt(std::uint64_t n, int number);
    /// So does every later one: a disk that has become full or read-only.
    void failFrom(std::uint64_t n, int number);
    /// A watched call about which `shouldFail` says so fails with errno value `number`.
    void failWhere(std::function<bool(Operation, const std::string& path)> shouldFail, int number);
    /// Kills the process at the n-th watched call, before it is forwarded.
    void killAt(std::uint64_t n);
    /// Runs `hook` before each watched call, on the calling thread.
    void before(std::function<void(Operation, const std::string& path)> hook);

    /// Watched calls so far, failed ones included.
    [[nodiscard]] std::uint64_t calls() const;
    /// The path that the first failed call was about; empty when none has failed.
    [[nodiscard]] std::string failedPath() const;
    /// What that call was; none when none has failed.
    [[nodiscard]] std::optional<Operation> failedOperation() const;

    platform::Result<platform::Directory> openDirectory(const std::string& path,
                                                        platform::LastLink lastLink) override;
    platform::Result<platform::Directory> openBeneath(const platform::Directory& base,
                                                      std::string_view relative,
                                                      platform::Mounts mounts) override;
    platform::Result<std::span<const platform::DirectoryEntry>> readEntries(
        platform::Directory& directory, platform::EntryBuffer& buffer) override;
    platform::Result<platform::FileAttributes> attributesAt(const platform::Directory& directory,
                                                            std::string_view name) override;
    platform::Result<> removeFileAt(const platform::Directory& directory,
                                    std::string_view name) override;
    platform::Result<> removeDirectoryAt(const platform::Directory& directory,
                                         std::string_view name) override;
    platform::Result<platform::FileAttributes> attributes(const std::string& path,
                                                          platform::LastLink lastLink) override;
    /// Not writable where it has to fail.
    bool isWritable(const std::string& path) override;
    platform::Result<std::optional<platform::FileSystemAttributes>> fileSystemAttributes(
        const std::string& path) override;
    platform::Result<std::string> resolvedPath(const std::string& path) override;
    platform::Result<std::string> hostPath(const platform::Directory& directory) override;
    platform::Result<std::string> readFile(const std::string& path, std::size_t maxBytes) override;
    platform::Result<> writeFile(const std::string& path, std::string_view content) override;
    platform::Result<> createDirectories(const std::string& path) override;
    platform::Result<> rename(const std::string& from, const std::string& to) override;
    platform::Result<platform::FileLock> lock(const std::string& path) override;
    platform::Result<platform::FileLock> tryLock(const std::string& path,
                                                 std::string_view note) override;

  private:
    /// What a call is about. The path of an open directory, which may be long, is put together only
    /// where somebody asks for it.
    struct Subject {
        Subject(const std::string& path) : text(&path) {}
        Subject(const platform::Directory& at) : directory(&at) {}
        Subject(const platform::Directory& at, std::string_view entry)
            : directory(&at), name(entry) {}
        [[nodiscard]] std::string path() const {
            if (text != nullptr) return *text;
            return name.empty() ? directory->path() : directory->pathOf(name);
        }

        const std::string* text = nullptr;
        const platform::Directory* directory = nullptr;
        std::string_view name;
    };

    /// Counts a call; the errno value that it must fail with, or 0.
    int arrive(Operation operation, const Subject& subject);
    template <class Call>
    auto through(Operation operation, const Subject& subject, const Call& call)
        -> decltype(call()) {
        if (const int number = arrive(operation, subject); number != 0)
            return std::unexpected(platform::errorFromErrno(number, subject.path()));
        return call();
    }

    std::set<Operation> watched_;
    std::uint64_t failFirst_ = 0;  // 0: none
    std::uint64_t failLast_ = 0;
    std::uint64_t killAt_ = 0;
    int number_ = 0;
    std::function<bool(Operation, const std::string&)> shouldFail_;
    std::function<void(Operation, const std::string&)> hook_;
    mutable std::mutex mutex_;
    std::uint64_t calls_ = 0;
    std::string failedPath_;
    std::optional<Operation> failedOperation_;
};

}  // namespace sweepwright::test
