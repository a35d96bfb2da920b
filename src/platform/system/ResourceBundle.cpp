#include "platform/system/ResourceBundle.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <system_error>

#include "platform/log/Log.h"
#include "platform/system/StringsTable.h"

namespace sweepwright::platform {

namespace fs = std::filesystem;

struct ResourceBundle::Tables {
    std::mutex mutex;
    std::map<std::string, std::shared_ptr<const StringsTable>, std::less<>> byName;
};

namespace {

std::string fileName(std::string_view name, std::string_view type) {
    std::string file(name);
    if (!type.empty()) file.append(".").append(type);
    return file;
}

std::string mainFolder() {
    if (const char* const named = std::getenv("SWEEPWRIGHT_RESOURCES");
        named != nullptr && *named != '\0') {
        return named;
    }
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error) {
        log("⚠️ 找不到程序自身的位置: {}", error.message());
        return {};
    }
    const fs::path installed = program.parent_path() / SWEEPWRIGHT_RESOURCES_FROM_PROGRAM;
    if (fs::is_directory(installed, error)) return installed.lexically_normal().string();
    return (program.parent_path().parent_path() / "share" / "sweepwright").string();
}

/// Whether `relative` stays within the folder that it starts from.
bool staysWithin(const fs::path& relative) {
    return !relative.empty() && relative.is_relative() &&
           std::ranges::none_of(relative, [](const fs::path& part) { return part == ".."; });
}

}  // namespace

ResourceBundle::ResourceBundle(std::string folder)
    : folder_(std::move(folder)), tables_(std::make_shared<Tables>()) {}

const ResourceBundle& ResourceBundle::main() {
    static const ResourceBundle bundle(mainFolder());
    return bundle;
}

std::optional<ResourceBundle> ResourceBundle::folderResource(std::string_view name,
                                                             std::string_view type) const {
    const fs::path path = fs::path(folder_) / fileName(name, type);
    std::error_code ignored;
    if (!fs::is_directory(path, ignored)) return std::nullopt;
    return ResourceBundle(path.string());
}

std::optional<std::string> ResourceBundle::pathForResource(std::string_view name,
                                                           std::string_view type,
                                                           std::string_view subfolder) const {
    const fs::path path = fs::path(folder_) / subfolder / fileName(name, type);
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored)) return std::nullopt;
    return path.string();
}

Result<std::string> ResourceBundle::readFile(std::string_view relative) const {
    const fs::path path = fs::path(folder_) / relative;
    if (!staysWithin(relative)) return std::unexpected(errorFromErrno(EINVAL, path.string()));
    std::error_code error;
    const std::uintmax_t size = fs::file_size(path, error);
    if (error) return std::unexpected(errorFromErrno(error.value(), path.string()));
    if (size > kMaxFileBytes) return std::unexpected(errorFromErrno(EFBIG, path.string()));
    std::string content(size, '\0');
    std::ifstream in(path, std::ios::binary);
    in.read(content.data(), static_cast<std::streamsize>(size));
    if (!in.good()) return std::unexpected(errorFromErrno(EIO, path.string()));
    return content;
}

std::string ResourceBundle::localizedString(std::string_view key, std::string_view value,
                                            std::string_view table) const {
    const auto texts = this->table(table);
    if (const std::string* const text = texts->find(key)) return *text;
    return std::string(value.empty() ? key : value);
}

std::shared_ptr<const StringsTable> ResourceBundle::table(std::string_view name) const {
    const std::scoped_lock lock(tables_->mutex);
    if (const auto known = tables_->byName.find(name); known != tables_->byName.end()) {
        return known->second;
    }
    const std::string file = fileName(name, "strings");
    const auto bytes = readFile(file);
    auto parsed = bytes ? StringsTable::parse(*bytes) : std::unexpected(bytes.error());
    if (!parsed) log("⚠️ 无法读取文本表: {}", parsed.error().description);
    auto texts = std::make_shared<const StringsTable>(std::move(parsed).value_or(StringsTable()));
    for (const auto& problem : texts->problems()) {
        log("⚠️ 文本表有误: {}/{} 第{}行: {}", folder_, file, problem.line, problem.why);
    }
    tables_->byName.emplace(name, texts);
    return texts;
}

}  // namespace sweepwright::platform
