// The settings' editors of the custom paths and of the protected paths.

#include <utility>

#include "protection/CustomPathManager.h"
#include "protection/PathWhitelistManager.h"
#include "ui/presentation/Presenter.h"
#include "ui/settings/SettingsViewController.h"

namespace sweepwright::ui {

void SettingsViewController::presentPathsManager(std::string_view titleKey,
                                                 std::string_view messageKey,
                                                 std::function<void()> add,
                                                 std::function<void()> view) {
    Alert manager = sheet(services_.texts(titleKey), services_.texts(messageKey));
    manager->addAction(services_.texts("Add Path"), AlertAction::Default, std::move(add))
        .addAction(services_.texts("View Paths"), AlertAction::Default, std::move(view))
        .addAction(services_.texts("Cancel"), AlertAction::Cancel);
    present(std::move(manager));
}

std::string_view SettingsViewController::remarkKey(const std::string& path) const {
    if (!path.starts_with('/')) return "Path Is Not Absolute";
    const auto found = services_.files.attributes(path, platform::LastLink::Follow);
    if (!found) return "Path Holds Nothing";
    return found->type == platform::FileType::Directory ? "Path Is a Folder" : "Path Is a File";
}

void SettingsViewController::presentPathEntry(Alert alert, std::string_view placeholderKey,
                                              const ChangePath& add) {
    AlertController* entry = alert.get();
    const auto added = [this, entry, add] {
        const std::string path = entry->text().toStdString();
        if (!path.empty()) finish(add(path));
    };
    // Whoever mistypes a path sees it before it is added.
    QObject::connect(entry, &AlertController::textChanged, this, [this, entry] {
        const std::string path = entry->text().toStdString();
        entry->setTip(path.empty() ? QString() : services_.texts(remarkKey(path)));
    });
    alert->addTextField(services_.texts(placeholderKey))
        .addAction(services_.texts("Add"), AlertAction::Default, added)
        .addAction(services_.texts("Cancel"), AlertAction::Cancel);
    present(std::move(alert));
}

void SettingsViewController::presentPaths(std::string_view titleKey, std::string_view emptyKey,
                                          const std::vector<PathChoice>& choices) {
    if (choices.empty()) {
        presentNote(alert(titleKey, emptyKey), "OK");
        return;
    }
    Alert paths = sheet(services_.texts(titleKey));
    for (const PathChoice& choice : choices)
        paths->addAction(choice.title, AlertAction::Default, choice.choose);
    paths->addAction(services_.texts("Cancel"), AlertAction::Cancel);
    present(std::move(paths));
}

void SettingsViewController::presentRemovablePath(const std::string& path,
                                                  const ChangePath& remove) {
    Alert options = sheet(QString::fromStdString(path), services_.texts(remarkKey(path)));
    options
        ->addAction(services_.texts("Remove"), AlertAction::Destructive,
                    [this, path, remove] { finish(remove(path)); })
        .addAction(services_.texts("Cancel"), AlertAction::Cancel);
    present(std::move(options));
}

void SettingsViewController::showCustomPathsManager() {
    presentPathsManager(
        "Custom Paths", "Custom Paths Description", [this] { addCustomPath(); },
        [this] { viewCustomPaths(); });
}

void SettingsViewController::addCustomPath() {
    presentPathEntry(
        alert("Add Custom Path", "Enter the path to clean"),
        "Path (e.g., /var/mobile/Library/Caches/MyApp)",
        [this](const std::string& path) { return services_.customPaths.addCustomPath(path); });
}

void SettingsViewController::viewCustomPaths() {
    std::vector<PathChoice> choices;
    for (const std::string& path : services_.customPaths.getAllCustomPaths()) {
        choices.push_back(
            {QString::fromStdString(path), [this, path] { showCustomPathOptions(path); }});
    }
    presentPaths("Custom Paths", "No custom paths added", choices);
}

void SettingsViewController::showCustomPathOptions(const std::string& path) {
    presentRemovablePath(path, [this](const std::string& removed) {
        return services_.customPaths.removeCustomPath(removed);
    });
}

void SettingsViewController::showPathWhitelistManager() {
    presentPathsManager(
        "Path Whitelist", "Path Whitelist Description", [this] { addPathToWhitelist(); },
        [this] { viewPathWhitelist(); });
}

void SettingsViewController::addPathToWhitelist() {
    presentPathEntry(alert("Add Path to Whitelist", "Enter the path to protect"),
                     "Path (e.g., /var/mobile/Library/Caches/Important)",
                     [this](const std::string& path) {
                         return services_.pathWhitelist.addPathToWhitelist(path);
                     });
}

void SettingsViewController::viewPathWhitelist() {
    std::vector<PathChoice> choices;
    for (const std::string& path : PathWhitelistManager::getBuiltInPaths()) {
        choices.push_back({QStringLiteral("🔒 ") + QString::fromStdString(path),
                           [this, path] { showPathWhitelistOptions(path, true); }});
    }
    for (const std::string& path : services_.pathWhitelist.getUserDefinedPaths()) {
        choices.push_back({QString::fromStdString(path),
                           [this, path] { showPathWhitelistOptions(path, false); }});
    }
    presentPaths("Path Whitelist", "No paths in whitelist", choices);
}

void SettingsViewController::showPathWhitelistOptions(const std::string& path, bool isBuiltIn) {
    if (!isBuiltIn) {
        presentRemovablePath(path, [this](const std::string& removed) {
            return services_.pathWhitelist.removePathFromWhitelist(removed);
        });
        return;
    }
    Alert options =
        sheet(QString::fromStdString(path), services_.texts("Built-in path, cannot be removed"));
    options->addAction(services_.texts("Cancel"), AlertAction::Cancel);
    present(std::move(options));
}

}  // namespace sweepwright::ui
