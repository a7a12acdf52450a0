#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QTimer>
#include <fcntl.h>
#include <string>
#include <unistd.h>

// A session manager that writes down what it is asked for and ends no session: fake_session_manager MODE LOG NAME PATH.
// MODE is "serve", "refuse" (replies that it cannot) or "silent" (never replies).

namespace {

class FakeSessionManager : public QDBusVirtualObject {
public:
    FakeSessionManager(std::string mode, std::string log) : m_mode(std::move(mode)), m_log(std::move(log)) {}

    void write(std::string const& line) const {
        int const file = ::open(m_log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
        std::string const bytes = line + "\n";
        if (::write(file, bytes.data(), bytes.size()) < 0) std::abort();
        ::close(file);
    }

    QString introspect(QString const&) const override { return {}; }

    bool handleMessage(QDBusMessage const& message, QDBusConnection const& connection) override {
        std::string line = message.interface().toStdString() + "." + message.member().toStdString() + "(" +
                           message.signature().toStdString() + ")";
        for (QVariant const& argument : message.arguments())
            line += " " + argument.toString().toStdString();
        write(line);
        if (m_mode == "silent") return true;
        if (m_mode == "refuse") return connection.send(message.createErrorReply("org.example.Error", "It is locked"));
        return connection.send(message.createReply());
    }

private:
    std::string m_mode;
    std::string m_log;
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
