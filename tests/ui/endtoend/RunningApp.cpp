#include "ui/endtoend/RunningApp.h"

#include <QElapsedTimer>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <gtest/gtest.h>
#include <xcb/xtest.h>

namespace sweepwright::test {

namespace {

constexpr int kPatience = 60000;  // milliseconds, for a busy machine
constexpr std::uint8_t kLeftButton = 1;
constexpr std::uint8_t kWheelDown = 5;

QString text(const std::string& bytes) {
    return QString::fromStdString(bytes);
}

}  // namespace

VirtualDisplay::VirtualDisplay() {
    server_.setProcessChannelMode(QProcess::SeparateChannels);
    // It writes the number that it has chosen to its standard output.
    server_.start(QStringLiteral("Xvfb"),
                  {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                   QStringLiteral("0"), QStringLiteral("1000x1300x24"), QStringLiteral("-nolisten"),
                   QStringLiteral("tcp")});
    if (!server_.waitForStarted(kPatience)) {
        ADD_FAILURE() << "Xvfb can't be started; script/bootstrap installs it";
        return;
    }
    QByteArray number;
    while (!number.endsWith('\n') && server_.waitForReadyRead(kPatience))
        number += server_.readAllStandardOutput();
    if (!number.endsWith('\n')) {
        ADD_FAILURE() << "Xvfb did not tell its display: "
                      << server_.readAllStandardError().constData();
        return;
    }
    name_ = QLatin1Char(':') + QString::fromLatin1(number.trimmed());
    connection_ = xcb_connect(qPrintable(name_), nullptr);
    if (xcb_connection_has_error(connection_) != 0)
        ADD_FAILURE() << "no display at " << qPrintable(name_);
}

VirtualDisplay::~VirtualDisplay() {
    if (connection_ != nullptr) xcb_disconnect(connection_);
    server_.terminate();
    if (server_.state() != QProcess::NotRunning && !server_.waitForFinished(kPatience))
        server_.kill();
}

void VirtualDisplay::fake(std::uint8_t type, std::uint8_t detail, QPointF at) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    xcb_test_fake_input(connection_, type, detail, XCB_CURRENT_TIME, root,
                        static_cast<std::int16_t>(at.x()), static_cast<std::int16_t>(at.y()), 0);
}

void VirtualDisplay::click(QPointF at) {
    fake(XCB_MOTION_NOTIFY, 0, at);
    fake(XCB_BUTTON_PRESS, kLeftButton);
    fake(XCB_BUTTON_RELEASE, kLeftButton);
    xcb_flush(connection_);
}

void VirtualDisplay::wheelDown() {
    fake(XCB_BUTTON_PRESS, kWheelDown);
    fake(XCB_BUTTON_RELEASE, kWheelDown);
    xcb_flush(connection_);
}

xcb_atom_t VirtualDisplay::atom(const char* name) {
    const auto length = static_cast<std::uint16_t>(std::strlen(name));
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection_, xcb_intern_atom(connection_, 0, length, name), nullptr),
        &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void VirtualDisplay::closeWindows() {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    const std::unique_ptr<xcb_query_tree_reply_t, decltype(&std::free)> tree(
        xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root), nullptr), &std::free);
    ASSERT_TRUE(tree);
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.type = atom("WM_PROTOCOLS");
    event.data.data32[0] = atom("WM_DELETE_WINDOW");
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        event.window = xcb_query_tree_children(tree.get())[i];
        xcb_send_event(connection_, 0, event.window, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&event));
    }
    xcb_flush(connection_);
}

RunningApp::RunningApp(VirtualDisplay& display, const std::string& deviceFolder)
    : display_(display) {
    const QString home = text(home_.path());
    const QString socket = home + QStringLiteral("/probe");
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("PATH"), qEnvironmentVariable("PATH"));
    environment.insert(QStringLiteral("HOME"), home);
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home);
    environment.insert(QStringLiteral("XDG_STATE_HOME"), home);
    environment.insert(QStringLiteral("LANG"), QStringLiteral("en_US.UTF-8"));
    environment.insert(QStringLiteral("DISPLAY"), display.name());
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    environment.insert(QStringLiteral("LIBGL_ALWAYS_SOFTWARE"), QStringLiteral("1"));
    // What Qt and the fonts keep until the end is no leak of ours.
    environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
    environment.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(SWEEPWRIGHT_PROBE_FOLDER));
    environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"),
                       QStringLiteral("windowprobe:") + socket);
    program_.setProcessEnvironment(environment);
    program_.setProcessChannelMode(QProcess::ForwardedChannels);
    program_.start(QStringLiteral(SWEEPWRIGHT_APP),
                   {QStringLiteral("--device-root"), text(deviceFolder)});
    if (!program_.waitForStarted(kPatience)) ADD_FAILURE() << "sweepwright can't be started";
    // The probe listens before there is a window.
    QElapsedTimer clock;
    clock.start();
    while (program_.state() == QProcess::Running && clock.elapsed() < kPatience) {
        probe_.connectToServer(socket);
        if (probe_.waitForConnected(kPatience)) return;
        program_.waitForFinished(20);
    }
    ADD_FAILURE() << "the window probe can't be reached";
}

RunningApp::~RunningApp() {
    if (program_.state() != QProcess::NotRunning) {
        program_.kill();
        program_.waitForFinished(kPatience);
    }
}

QRectF RunningApp::find(const char* nameOrText) {
    probe_.write(QByteArray(nameOrText) + '\n');
    while (!probe_.canReadLine()) {
        if (!probe_.waitForReadyRead(kPatience)) {
            ADD_FAILURE() << "this does not come: " << nameOrText;
            return {};
        }
    }
    const QByteArrayList numbers = probe_.readLine().trimmed().split(' ');
    if (numbers.size() != 4) return {};
    return {numbers[0].toDouble(), numbers[1].toDouble(), numbers[2].toDouble(),
            numbers[3].toDouble()};
}

void RunningApp::click(const char* nameOrText) {
    const QRectF frame = find(nameOrText);
    if (!frame.isEmpty()) display_.click(frame.center());
}

void RunningApp::scrollTo(const char* name, double bottom) {
    constexpr int kNotches = 100;
    for (int i = 0; i < kNotches && find(name).bottom() > bottom; ++i)
        display_.wheelDown();
    EXPECT_LE(find(name).bottom(), bottom);
}

int RunningApp::close() {
    display_.closeWindows();
    if (!program_.waitForFinished(kPatience)) {
        ADD_FAILURE() << "sweepwright does not end";
        return -1;
    }
    return program_.exitStatus() == QProcess::NormalExit ? program_.exitCode() : -1;
}

}  // namespace sweepwright::test
