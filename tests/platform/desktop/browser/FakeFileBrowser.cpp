#include "tests/platform/desktop/FakeService.h"
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QTimer>
#include <csignal>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

// A file browser that writes down what it is asked for: fake_file_browser MODE LOG [ARGUMENT ...].
//   serve     is the service     silent    is it and never replies    refuse    is it and replies that it cannot
//   stubborn  is it and does not end when it is asked to              nameless  runs without being the service
//   ends      ends at once       starts    starts one that serves, and ends
//   open      is none, and ends  quit      tells the one that serves to end
//   dolphin   is it, never replies to ShowItemProperties, and is told to end by its own name's call
//   leaves    is it and ends when it is asked to show something
//   quit-and-linger  as quit, but stays with a child process of the same program for half a minute

namespace {

constexpr char Name[] = "org.freedesktop.FileManager1";
constexpr char Path[] = "/org/freedesktop/FileManager1";

class FakeFileBrowser : public mac::test::FakeService {
public:
    using FakeService::FakeService;

    bool handleMessage(QDBusMessage const& message, QDBusConnection const& connection) override {
        if (message.member().compare(QLatin1String("quit"), Qt::CaseInsensitive) == 0) {
            write("asked to quit");
            QTimer::singleShot(0, qApp, &QCoreApplication::quit);
            return connection.send(message.createReply());
        }
        std::string line = message.member().toStdString();
        for (QString const& uri : message.arguments().value(0).toStringList())
            line += " " + uri.toStdString();
        write(line);
        if (mode() == "leaves") ::_exit(0);
        bool const isInformation = message.member() == QLatin1String("ShowItemProperties");
        if (mode() == "silent" || (mode() == "dolphin" && isInformation)) return true;
        if (mode() != "refuse") return connection.send(message.createReply());
        return connection.send(message.createErrorReply("org.example.Error", "It has no hands"));
    }
};

} // namespace

int main(int count, char** arguments) {
    QCoreApplication const application(count, arguments);
    if (count < 3) return 2;
    std::string const mode = arguments[1];
    FakeFileBrowser browser(mode, arguments[2]);
    std::string line = "started " + mode;
    for (int index = 3; index < count; ++index)
        line.append(" ").append(arguments[index]);
    // Only who asks for it wants to see the folder.
    std::string const folder = std::filesystem::current_path().string();
    if (line.ends_with(" in")) line.append(" ").append(folder);
    browser.write(line);
    if (mode == "ends" || mode == "open") return 0;
    if (mode == "stubborn") ::signal(SIGTERM, SIG_IGN);
    if (mode == "starts" && ::fork() != 0) return 0;
    if (mode == "starts") ::execl(arguments[0], arguments[0], "serve", arguments[2], nullptr);
    // When the test's bus goes while it is asked, it may never end by itself.
    constexpr unsigned seconds = 30;
    bool const asksToQuit = mode.starts_with("quit");
    if (asksToQuit) ::alarm(seconds);
    if (mode == "quit-and-linger" && ::fork() == 0) {
        ::alarm(seconds);
        ::pause();
    }
    QDBusConnection connection = QDBusConnection::sessionBus();
    if (asksToQuit) {
        connection.call(QDBusMessage::createMethodCall(Name, Path, Name, "Quit"));
        if (mode == "quit-and-linger") ::pause();
        return 0;
    }
    connection.registerVirtualObject(Path, &browser);
    if (mode == "dolphin") {
        connection.registerVirtualObject("/MainApplication", &browser);
        connection.registerService("org.kde.dolphin-" + QString::number(::getpid()));
    }
    if (mode != "nameless" && !connection.registerService(Name)) return 1;
    // The test's bus ends with the test.
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&connection] {
        if (!connection.isConnected()) QCoreApplication::quit();
    });
    timer.start(100);
    return QCoreApplication::exec();
}
