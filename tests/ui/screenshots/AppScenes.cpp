#include <QTest>

#include "ui/apps/AppListViewController.h"
#include "ui/apps/WhitelistViewController.h"
#include "ui/presentation/NavigationController.h"
#include "ui/screenshots/Scene.h"
#include "ui/support/InstalledApps.h"

namespace sweepwright::test {

namespace {

ui::AppListViewController& screenOf(TestApp& app) {
    return *qobject_cast<ui::AppListViewController*>(app.scene().tabBarController()->at(1).root());
}

void fill(TestApp& app) {
    for (const InstalledApp& each : sampleApps())
        install(app.device, each);
    for (const char* kept : {"cn.mogu.music", "jp.hondana.manga", "com.nestmap.family"})
        (void)app.services().appWhitelist.addAppToWhitelist(kept);
}

void fillWithExtremes(TestApp& app) {
    install(app.device, {"com.example.hoard", "Hoard", 2300 * kGigabyte, 700 * kGigabyte,
                         plainIcon(180, 60, 200, 60)});
    install(app.device, {"com.example.long",
                         "Donaudampfschifffahrtsgesellschaftskapitänsmützenverwaltung für "
                         "unterwegs und zu Hause",
                         1023, 1025, plainIcon(40, 120, 220, 60)});
    install(app.device, {"com.example.an.identifier.without.any.name.that.goes.on.and.on.and.on",
                         "", 5 * kGigabyte, 0, plainIcon(30, 160, 90, 60)});
    install(app.device, {"com.example.nothing", "Nothing", 0, 0, plainIcon(230, 150, 30, 60)});
    install(app.device, {"com.example.protected", "Ein sehr langer Name, der geschützt ist",
                         77 * kGigabyte, 12345678, plainIcon(200, 40, 60, 60)});
    (void)app.services().appWhitelist.addAppToWhitelist("com.example.protected");
}

// Runs the main queue until the screen's scan is through and its icons are drawn.
void settle(TestApp& app) {
    waitUntil([&] {
        app.mainQueue.drain();
        return !screenOf(app).loading();
    });
    app.settle();
}

void showTab(TestApp& app) {
    app.scene().tabBarController()->setSelectedIndex(1);
    settle(app);
}

using Step = std::function<void(TestApp&)>;

// The tab, filled and settled, then `step`.
Scene scene(const char* name, const Step& step, const Step& device = fill, double textScale = 1.0) {
    return {QString::fromLatin1(name),
            {},
            [step](TestApp& app) {
                showTab(app);
                if (step) step(app);
                settle(app);
            },
            26,
            false,
            device,
            textScale};
}

// The tab, then `step`, of which what is posted to the main queue does not run.
Scene unsettled(const char* name, const Step& step) {
    return {.name = QString::fromLatin1(name),
            .prepare =
                [step](TestApp& app) {
                    showTab(app);
                    step(app);
                },
            .device = fill};
}

void search(TestApp& app, const QString& text) {
    QQuickItem* field = app.item("searchField");
    field->forceActiveFocus();
    field->setProperty("text", text);
    screenOf(app).filterAppsWithSearchText(text);
}

void openRow(TestApp& app, int row) {
    const QString name = QStringLiteral("app ") + screenOf(app).apps()->at(row).key;
    QMetaObject::invokeMethod(app.item(name.toUtf8().constData()), "openActions");
}

int rowOf(TestApp& app, bool isProtected) {
    ui::AppListModel& apps = *screenOf(app).apps();
    for (int row = 2; row < apps.rowCount(); ++row)
        if (apps.at(row).isProtected == isProtected) return row;
    return 0;
}

void select(TestApp& app, std::initializer_list<int> rows) {
    screenOf(app).toggleEditMode();
    for (const int row : rows)
        screenOf(app).didSelectRow(row);
}

void pushWhitelist(TestApp& app) {
    ui::NavigationController& navigation = app.scene().tabBarController()->at(2);
    app.scene().tabBarController()->setSelectedIndex(2);
    navigation.push(std::make_unique<ui::WhitelistViewController>(app.services()));
    auto& screen = *qobject_cast<ui::WhitelistViewController*>(navigation.top());
    waitUntil([&] {
        app.mainQueue.drain();
        return !screen.loading();
    });
    app.settle();
}

Scene whitelist(const char* name, const Step& step, const Step& device, double textScale = 1.0) {
    return scene(
        name,
        [step](TestApp& app) {
            pushWhitelist(app);
            if (step) step(app);
        },
        device, textScale);
}

void openWhitelistRow(TestApp& app) {
    QMetaObject::invokeMethod(app.item("app cn.mogu.music"), "openActions");
}

std::vector<Scene> listScenes() {
    return {
        scene("apps", {}),
        scene("apps-system", [](TestApp& app) { screenOf(app).setSelectedSegment(1); }),
        scene("apps-extremes", {}, fillWithExtremes),
        scene("apps-large-text", {}, fill, 1.5),
        scene("apps-largest-text", {}, fillWithExtremes, 2.0),
        scene("apps-scrolled",
              [](TestApp& app) { app.item("appList")->setProperty("contentY", 900); }),
        scene("apps-end",
              [](TestApp& app) {
                  QMetaObject::invokeMethod(app.item("appList"), "toBottom");
                  app.scene().showTabBar();
              }),
        scene("apps-search", [](TestApp& app) { search(app, QStringLiteral("ber")); }),
        scene("apps-no-match", [](TestApp& app) { search(app, QStringLiteral("confeti")); }),
        scene("apps-match-elsewhere", [](TestApp& app) { search(app, QStringLiteral("safari")); }),
        scene("apps-empty", {}, Step{}),
        unsettled("apps-loading", [](TestApp& app) { screenOf(app).refreshApps(); }),
        scene("apps-swiped", [](TestApp& app) { openRow(app, rowOf(app, false)); }),
        scene("apps-swiped-protected", [](TestApp& app) { openRow(app, rowOf(app, true)); }),
        scene("apps-editing", [](TestApp& app) { select(app, {}); }),
        scene("apps-editing-selected", [](TestApp& app) { select(app, {0, 1, 3, 4}); }),
        scene(
            "apps-editing-large-text", [](TestApp& app) { select(app, {0, 1, 3, 4}); }, fill, 1.5),
        scene("apps-editing-all",
              [](TestApp& app) {
                  select(app, {});
                  screenOf(app).toggleSelectAll();
              }),
    };
}

std::vector<Scene> alertScenes() {
    return {
        scene("apps-confirm", [](TestApp& app) { screenOf(app).didSelectRow(1); }),
        scene("apps-confirm-system",
              [](TestApp& app) {
                  screenOf(app).setSelectedSegment(1);
                  screenOf(app).didSelectRow(0);
              }),
        scene("apps-confirm-batch",
              [](TestApp& app) {
                  select(app, {0, 1, 3, 4});
                  screenOf(app).cleanSelectedApps();
              }),
        scene("apps-none-selected",
              [](TestApp& app) {
                  select(app, {});
                  screenOf(app).cleanSelectedApps();
              }),
        scene("apps-completed",
              [](TestApp& app) {
                  screenOf(app).cleanCacheForApp(screenOf(app).currentApps()[0], {});
                  const auto* busy = app.presenter().alert();
                  waitUntil([&] {
                      app.mainQueue.drain();
                      return app.presenter().alert() != busy;
                  });
              }),
        unsettled("apps-cleaning",
                  [](TestApp& app) {
                      screenOf(app).cleanCacheForApp(screenOf(app).currentApps()[0], {});
                  }),
    };
}

}  // namespace

std::vector<Scene> appScenes() {
    std::vector<Scene> scenes = listScenes();
    for (const Scene& each : alertScenes())
        scenes.push_back(each);
    scenes.push_back(whitelist("whitelist", {}, fill));
    scenes.push_back(whitelist("whitelist-large-text", {}, fill, 1.5));
    scenes.push_back(whitelist("whitelist-empty", {}, Step{}));
    scenes.push_back(whitelist("whitelist-swiped", openWhitelistRow, fill));
    scenes.push_back(whitelist(
        "whitelist-confirm",
        [](TestApp& app) {
            auto* top = app.scene().tabBarController()->at(2).top();
            qobject_cast<ui::WhitelistViewController*>(top)->performSwipeAction(0, 0);
        },
        fill));
    return scenes;
}

}  // namespace sweepwright::test
