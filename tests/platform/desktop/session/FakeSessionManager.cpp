#include "tests/platform/desktop/FakeService.h"
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QTimer>
#include <string>
#include <unistd.h>

// A session manager that writes down what it is asked for and ends no session: fake_session_manager MODE LOG NAME PATH.
// MODE is "serve", "refuse" (replies that it cannot) or "silent" (never replies).

namespace {

class FakeSessionManager : public mac::test::FakeService {
public:
    using FakeService::FakeService;

    bool handleMessage(QDBusMessage const& message, QDBusConnection const& connection) override {
        std::string line = message.interface().toStdString() + "." + message.member().toStdString() + "(" +
                           message.signature().toStdString() + ")";
        for (QVariant const& argument : message.arguments())
            line += " " + argument.toString().toStdString();
        write(line);
        if (mode() == "silent") return true;
        if (mode() == "refuse") return connection.send(message.createErrorReply("org.example.Error", "It is locked"));
        return connection.send(message.createReply());
    }
};

} // namespace

int main(int count, char** arguments) {
    QCoreApplication const application(count, arguments);
    if (count != 5) return 2;
    FakeSessionManager manager(arguments[1], arguments[2]);
    QDBusConnection connection = QDBusConnection::sessionBus();
    connection.registerVirtualObject(arguments[4], &manager);
    if (!connection.registerService(arguments[3])) return 1;
    manager.write("ready");
    // The test's bus ends with the test.
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&connection] {
        if (!connection.isConnected()) QCoreApplication::quit();
    });
    timer.start(100);
    return QCoreApplication::exec();
}
