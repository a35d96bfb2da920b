#pragma once

#include <QGenericPlugin>
#include <QLocalServer>
#include <QLocalSocket>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>
#include <vector>

namespace sweepwright::test {

/// Tells a test where things are in the window of the very program that is under test, which loads
/// this as it would load any of Qt's generic plugins. It looks only: what happens is the test's
/// doing.
///
/// A request is a line with an item's object name or the text it shows. The answer comes once such
/// an item is in sight, in reach and at rest: "x y width height" in the display's pixels, a line
/// feed after it.
class WindowProbe : public QObject {
    Q_OBJECT

  public:
    explicit WindowProbe(const QString& socketName);

  private:
    struct Request {
        QLocalSocket* socket;
        QString wanted;
        QRectF last;
    };
    void takeRequests(QLocalSocket* socket);
    void answerWhatCanBe();
    bool answer(Request& request);

    QLocalServer server_;
    std::vector<Request> waiting_;
    QTimer clock_;
};

/// What Qt loads.
class WindowProbePlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "WindowProbe.json")

  public:
    QObject* create(const QString& key, const QString& parameters) override;
};

}  // namespace sweepwright::test
