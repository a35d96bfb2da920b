#include "platform/device/UserDefaults.h"

#include <algorithm>
#include <cerrno>
#include <ctime>

#include <fmt/format.h>

#include "platform/device/Device.h"
#include "platform/log/Log.h"
#include "platform/text/Utf8.h"

namespace sweepwright::platform {

namespace {

constexpr std::string_view kDamagedInfix = ".damaged-";

std::string directoryOf(const std::string& file) {
    return file.substr(0, std::max<std::size_t>(file.rfind('/'), 1));
}

/// The local time as yyyyMMdd-HHmmss.
std::string timestamp() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    return fmt::format("{:04}{:02}{:02}-{:02}{:02}{:02}", parts.tm_year + 1900, parts.tm_mon + 1,
                       parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

bool isErrno(const Error& error, int number) {
    return error.domain == kPosixErrorDomain && error.code == number;
}

bool isKey(std::string_view key) {
    return isUtf8(key) && key.find('\0') == std::string_view::npos;
}

bool isDamage(const Error& error) {
    return error.domain == kFormatErrorDomain;
}

}  // namespace

UserDefaults::UserDefaults(FileManager& files, std::string file)
    : files_(files), file_(std::move(file)) {}

UserDefaults& UserDefaults::standard() {
    static UserDefaults defaults(FileManager::defaultManager(),
                                 Device::current().userDefaultsFile());
    return defaults;
}

/// The file's bytes; none when there is no file. Taken for absent by mistake, the lists would
/// protect nothing and be written over: that is looked at twice. A file that is there at the second
/// look came to be meanwhile, and is read after all.
Result<std::optional<std::string>> UserDefaults::storedBytes() const {
    constexpr int kAttempts = 3;
    for (int attempt = 1;; ++attempt) {
        auto bytes = files_.readFile(file_, PropertyList::Limits{}.bytes);
        if (bytes || !isErrno(bytes.error(), ENOENT)) return bytes;
        const auto there = files_.attributes(file_, LastLink::Follow);
        if (!there && isErrno(there.error(), ENOENT)) return std::nullopt;
        if (!there || attempt == kAttempts) return std::unexpected(bytes.error());
    }
}

Result<PropertyList::Dictionary> UserDefaults::load() const {
    const auto bytes = storedBytes();
    if (!bytes) return std::unexpected(bytes.error());
    if (!*bytes) return {};
    auto list = PropertyList::parse(**bytes);
    if (!list) return std::unexpected(formatError(file_, list.error().description));
    auto* dictionary = list->dictionary();
    if (dictionary == nullptr) {
        return std::unexpected(formatError(file_, "a property list that is no dictionary"));
    }
    return std::move(*dictionary);
}

Result<std::optional<PropertyList>> UserDefaults::read(std::string_view key) const {
    const auto stored = load();
    if (!stored) return std::unexpected(stored.error());
    const PropertyList* value = stored->find(key);
    if (value == nullptr) return std::nullopt;
    return *value;
}

std::optional<PropertyList> UserDefaults::object(std::string_view key) const {
    return read(key).value_or(std::nullopt);
}

std::optional<std::string> UserDefaults::string(std::string_view key) const {
    const auto value = object(key);
    const std::string* bytes = value ? value->bytes() : nullptr;
    if (bytes == nullptr) return {};
    return *bytes;
}

std::int64_t UserDefaults::integer(std::string_view key) const {
    const auto value = object(key);
    return value ? value->integer().value_or(0) : 0;
}

std::uint64_t UserDefaults::unsignedInteger(std::string_view key) const {
    const auto value = object(key);
    return value ? value->unsignedInteger().value_or(0) : 0;
}

bool UserDefaults::boolean(std::string_view key) const {
    const auto value = object(key);
    const bool* held = value ? value->boolean() : nullptr;
    return held != nullptr && *held;
}

Result<> UserDefaults::set(std::string_view key, PropertyList value) {
    return update(key, [&](const PropertyList*) { return std::move(value); });
}

Result<> UserDefaults::remove(std::string_view key) {
    return update(key, [](const PropertyList*) { return std::nullopt; });
}

Result<> UserDefaults::update(std::string_view key, const Change& change) {
    return updateAll([&](PropertyList::Dictionary& stored) {
        if (auto value = change(stored.find(key))) {
            stored.set(std::string(key), *std::move(value));
        } else {
            stored.remove(key);
        }
    });
}

Result<> UserDefaults::updateAll(const std::function<void(PropertyList::Dictionary&)>& change) {
    if (auto made = files_.createDirectories(directoryOf(file_)); !made) return made;
    const auto lock = files_.lock(file_ + ".lock");
    if (!lock) return std::unexpected(lock.error());
    auto stored = load();
    const bool damaged = !stored && isDamage(stored.error());
    if (!stored && !damaged) return std::unexpected(stored.error());
    PropertyList::Dictionary changed = damaged ? PropertyList::Dictionary() : *stored;
    const std::string before = PropertyList(changed).toBinary();
    change(changed);
    if (!std::ranges::all_of(changed.entries(), isKey, &PropertyList::Dictionary::Entry::first)) {
        return std::unexpected(formatError(file_, "a key that is not text can't be stored"));
    }
    // Compared as written: a string that is not UTF-8 reads back as data and is no change then.
    const std::string after = PropertyList(std::move(changed)).toBinary();
    if (after == before) return {};
    // What could not be read back would count as damage, and take every other key with it.
    if (auto readable = PropertyList::parse(after); !readable) {
        return std::unexpected(readable.error());
    }
    if (damaged) {
        if (auto moved = setAside(); !moved) return moved;
    }
    return files_.writeFile(file_, after);
}

/// Renames the damaged file to the first name that is free.
Result<> UserDefaults::setAside() const {
    const std::string wanted = fmt::format("{}{}{}", file_, kDamagedInfix, timestamp());
    std::string name = wanted;
    for (int next = 1;; ++next) {
        const auto moved = files_.rename(file_, name);
        if (moved) break;
        if (!isErrno(moved.error(), EEXIST)) return moved;
        name = fmt::format("{}-{}", wanted, next);
    }
    log("⚠️ 用户设置文件已损坏，已另存为: {}", name);
    return {};
}

std::optional<Error> UserDefaults::damage() const {
    if (const auto stored = load(); !stored) return stored.error();
    const std::string directory = directoryOf(file_);
    auto names = files_.contentsOfDirectory(directory);
    if (!names) {
        if (isErrno(names.error(), ENOENT)) return {};
        return names.error();
    }
    const std::string prefix = std::string(lastPathComponent(file_)) + std::string(kDamagedInfix);
    std::erase_if(*names, [&](const std::string& name) { return !name.starts_with(prefix); });
    if (names->empty()) return {};
    return formatError(joinPath(directory, *std::ranges::min_element(*names)),
                       "these user defaults were damaged and set aside; restore or remove them");
}

}  // namespace sweepwright::platform
