#include "support/FaultyFileManager.h"

#include <csignal>
#include <limits>
#include <utility>

namespace sweepwright::test {

using platform::Directory;
using platform::ForwardingFileManager;
using platform::Result;

const std::set<Operation>& everyOperation() {
    static const std::set<Operation> all = [] {
        std::set<Operation> operations = kChangingOperations;
        operations.insert({Operation::OpenDirectory, Operation::OpenBeneath, Operation::ReadEntries,
                           Operation::AttributesAt, Operation::Attributes, Operation::IsWritable,
                           Operation::FileSystemAttributes, Operation::ResolvedPath,
                           Operation::HostPath, Operation::ReadFile});
        return operations;
    }();
    return all;
}

void FaultyFileManager::failAt(std::uint64_t n, int number) {
    failFirst_ = n;
    failLast_ = n;
    number_ = number;
}

void FaultyFileManager::failFrom(std::uint64_t n, int number) {
    failAt(n, number);
    failLast_ = std::numeric_limits<std::uint64_t>::max();
}

void FaultyFileManager::failWhere(std::function<bool(Operation, const std::string&)> shouldFail,
                                  int number) {
    shouldFail_ = std::move(shouldFail);
    number_ = number;
}

void FaultyFileManager::killAt(std::uint64_t n) {
    killAt_ = n;
}

void FaultyFileManager::before(std::function<void(Operation, const std::string&)> hook) {
    hook_ = std::move(hook);
}

std::uint64_t FaultyFileManager::calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
}

std::string FaultyFileManager::failedPath() const {
    const std::lock_guard lock(mutex_);
    return failedPath_;
}

std::optional<Operation> FaultyFileManager::failedOperation() const {
    const std::lock_guard lock(mutex_);
    return failedOperation_;
}

int FaultyFileManager::arrive(Operation operation, const Subject& subject) {
    if (!watched_.contains(operation)) return 0;
    if (hook_) hook_(operation, subject.path());
    const std::lock_guard lock(mutex_);
    ++calls_;
    if (killAt_ != 0 && calls_ == killAt_) std::raise(SIGKILL);
    const bool counted = failFirst_ != 0 && calls_ >= failFirst_ && calls_ <= failLast_;
    if (!counted && !(shouldFail_ && shouldFail_(operation, subject.path()))) return 0;
    if (!failedOperation_) {
        failedOperation_ = operation;
        failedPath_ = subject.path();
    }
    return number_;
}

Result<Directory> FaultyFileManager::openDirectory(const std::string& path,
                                                   platform::LastLink lastLink) {
    return through(Operation::OpenDirectory, path,
                   [&] { return ForwardingFileManager::openDirectory(path, lastLink); });
}

Result<Directory> FaultyFileManager::openBeneath(const Directory& base, std::string_view relative,
                                                 platform::Mounts mounts) {
    return through(Operation::OpenBeneath, {base, relative},
                   [&] { return ForwardingFileManager::openBeneath(base, relative, mounts); });
}

Result<std::span<const platform::DirectoryEntry>> FaultyFileManager::readEntries(
    Directory& directory, platform::EntryBuffer& buffer) {
    return through(Operation::ReadEntries, directory,
                   [&] { return ForwardingFileManager::readEntries(directory, buffer); });
}

Result<platform::FileAttributes> FaultyFileManager::attributesAt(const Directory& directory,
                                                                 std::string_view name) {
    return through(Operation::AttributesAt, {directory, name},
                   [&] { return ForwardingFileManager::attributesAt(directory, name); });
}

Result<> FaultyFileManager::removeFileAt(const Directory& directory, std::string_view name) {
    return through(Operation::RemoveFileAt, {directory, name},
                   [&] { return ForwardingFileManager::removeFileAt(directory, name); });
}

Result<> FaultyFileManager::removeDirectoryAt(const Directory& directory, std::string_view name) {
    return through(Operation::RemoveDirectoryAt, {directory, name},
                   [&] { return ForwardingFileManager::removeDirectoryAt(directory, name); });
}

Result<platform::FileAttributes> FaultyFileManager::attributes(const std::string& path,
                                                               platform::LastLink lastLink) {
    return through(Operation::Attributes, path,
                   [&] { return ForwardingFileManager::attributes(path, lastLink); });
}

bool FaultyFileManager::isWritable(const std::string& path) {
    return arrive(Operation::IsWritable, path) == 0 && ForwardingFileManager::isWritable(path);
}

Result<std::optional<platform::FileSystemAttributes>> FaultyFileManager::fileSystemAttributes(
    const std::string& path) {
    return through(Operation::FileSystemAttributes, path,
                   [&] { return ForwardingFileManager::fileSystemAttributes(path); });
}

Result<std::string> FaultyFileManager::resolvedPath(const std::string& path) {
    return through(Operation::ResolvedPath, path,
                   [&] { return ForwardingFileManager::resolvedPath(path); });
}

Result<std::string> FaultyFileManager::hostPath(const Directory& directory) {
    return through(Operation::HostPath, directory,
                   [&] { return ForwardingFileManager::hostPath(directory); });
}

Result<std::string> FaultyFileManager::readFile(const std::string& path, std::size_t maxBytes) {
    return through(Operation::ReadFile, path,
                   [&] { return ForwardingFileManager::readFile(path, maxBytes); });
}

Result<> FaultyFileManager::writeFile(const std::string& path, std::string_view content) {
    return through(Operation::WriteFile, path,
                   [&] { return ForwardingFileManager::writeFile(path, content); });
}

Result<> FaultyFileManager::createDirectories(const std::string& path) {
    return through(Operation::CreateDirectories, path,
                   [&] { return ForwardingFileManager::createDirectories(path); });
}

Result<> FaultyFileManager::rename(const std::string& from, const std::string& to) {
    return through(Operation::Rename, from,
                   [&] { return ForwardingFileManager::rename(from, to); });
}

Result<platform::FileLock> FaultyFileManager::lock(const std::string& path) {
    return through(Operation::Lock, path, [&] { return ForwardingFileManager::lock(path); });
}

Result<platform::FileLock> FaultyFileManager::tryLock(const std::string& path,
                                                      std::string_view note) {
    return through(Operation::TryLock, path,
                   [&] { return ForwardingFileManager::tryLock(path, note); });
}

}  // namespace sweepwright::test
