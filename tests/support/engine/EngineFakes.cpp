#include "support/engine/EngineFakes.h"

#include <filesystem>

namespace sweepwright::test {

namespace fs = std::filesystem;

std::int32_t FakeCommandRunner::run(const std::string& command, const std::string& writableFolder) {
    commands_.push_back({command, writableFolder});
    if (answer_) return answer_(Command(commands_.back()));
    removeVisibleEntries(writableFolder);
    return 0;
}

void removeVisibleEntries(const std::string& hostFolder) {
    std::vector<fs::path> visible;
    for (const auto& entry : fs::directory_iterator(hostFolder))
        if (!entry.path().filename().string().starts_with('.')) visible.push_back(entry.path());
    for (const fs::path& path : visible)
        fs::remove_all(path);
}

platform::Removal ForwardingEraser::removeEntry(const platform::Directory& parent,
                                                const std::string& name,
                                                const platform::WalkRules& rules) {
    const std::string path = parent.pathOf(name);
    {
        const std::lock_guard lock(mutex_);
        removed.push_back(path);
    }
    if (onRemove) onRemove(path);
    if (remover) return remover(parent, name);
    return target_.removeEntry(parent, name, rules);
}

void ForwardingEraser::settle() {
    ++settled;
    if (onSettle) onSettle();
}

}  // namespace sweepwright::test
