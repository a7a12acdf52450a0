#include "platform/events/AppleEvents.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/running/NSRunLoop.h"
#include "tests/platform/events/TestEvents.h"
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QTimer>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <sys/prctl.h>
#include <thread>
#include <unistd.h>
#include <vector>

// The other process of the transport's tests. Each event it handles shows one thing that another process may do.

namespace mac::test {

namespace {

bool s_isToQuit = false;

void say(char const* line) {
    std::puts(line);
    std::fflush(stdout);
}

NSAppleEventDescriptor directObject(AppleEvent const* event) {
    return NSAppleEventDescriptor::descriptorWithAEDesc(*event).paramDescriptorForKeyword_(keyDirectObject);
}

void setDirectObject(AppleEvent* reply, NSAppleEventDescriptor const& value) {
    NSAppleEventDescriptor const filled = NSAppleEventDescriptor::descriptorWithAEDesc(*reply);
    filled.setParamDescriptor_forKeyword_(value, keyDirectObject);
    *reply = *filled.aeDesc();
}

void waitForLine() {
    char byte = 0;
    while (::read(STDIN_FILENO, &byte, 1) > 0 && byte != '\n') {}
}

OSErr quit(AppleEvent const*, AppleEvent*, void*) {
    s_isToQuit = true;
    say("quit");
    if (::getenv("EVENT_PEER_QUITS_AT_LINE")) waitForLine();
    return noErr;
}

OSErr echo(AppleEvent const* event, AppleEvent* reply, void*) {
    setDirectObject(reply, directObject(event));
    return noErr;
}

// Asks the sender something before it replies.
OSErr callBack(AppleEvent const* event, AppleEvent* reply, void*) {
    NSAppleEventDescriptor const received = NSAppleEventDescriptor::descriptorWithAEDesc(*event);
    AppleEvent answer;
    NSAppleEventDescriptor const sender = received.attributeDescriptorForKeyword_(keyOriginalAddressAttr);
    AppleEvent const question = testEvent(Back, sender, directObject(event));
    OSStatus const status = AESendMessage(&question, &answer, kAEWaitReply, kAEDefaultTimeout);
    if (status != noErr) return static_cast<OSErr>(status);
    setDirectObject(reply, directObject(&answer));
    return noErr;
}

OSErr hang(AppleEvent const*, AppleEvent*, void*) {
    say("hanging");
    waitForLine();
    return noErr;
}

OSErr die(AppleEvent const*, AppleEvent*, void*) {
    std::raise(SIGKILL);
    return noErr;
}

OSErr fail(AppleEvent const*, AppleEvent*, void*) { return -1234; }

OSErr raise(AppleEvent const*, AppleEvent*, void*) { throw NSGenericException("on purpose"); }

OSErr replyTooMuch(AppleEvent const*, AppleEvent* reply, void*) {
    std::vector<std::byte> const bytes(std::size_t{17} << 20);
    setDirectObject(reply, NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(
                               typeData, bytes.data(), static_cast<NSUInteger>(bytes.size())));
    return noErr;
}

OSErr tellDirectObject(AppleEvent const* event, AppleEvent*, void*) {
    say(directObject(event).stringValue().UTF8String().c_str());
    return noErr;
}

// Whether the process has a thread of the name, which the system cuts to 15 bytes.
bool hasThread(std::string_view name) {
    for (auto const& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(thread.path() / "comm");
        std::string line;
        if (std::getline(file, line) && line == name) return true;
    }
    return false;
}

// The toolkit calls a thread finished when its function has returned; the system lists it a moment longer.
bool isThreadGone(std::string_view name) {
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (hasThread(name)) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::yield();
    }
    return true;
}

void tellWhetherTransportEnded() {
    say(isThreadGone("Apple events") ? "the transport ended" : "the transport runs on");
}

// Repeats what the toolkit says about its work with buses if that means that it could not ask, or no longer knew its
// own types.
void tellComplaint(QtMsgType, QMessageLogContext const&, QString const& message) {
    for (char const* const complaint : {"Error.NoMemory", "invalid type"})
        if (message.contains(QLatin1StringView(complaint))) say(complaint);
}

void install(AEEventID eventID, AEEventHandlerProcPtr handler) {
    AEInstallEventHandler(TestClass, eventID, handler, nullptr, NO);
}

void run() {
    AEInstallEventHandler(kCoreEventClass, kAEQuitApplication, quit, nullptr, NO);
    install(Echo, echo);
    install(CallBack, callBack);
    install(Hang, hang);
    AEInstallEventHandler(AEEventClass("core"), AEEventID("getd"), hang, nullptr, NO);
    install(Die, die);
    install(Fail, fail);
    install(Raise, raise);
    install(TooMuch, replyTooMuch);
    install(Tell, tellDirectObject);
    // A program with windows makes another kind of loop later.
    if (QCoreApplication::instance()) say("a loop before one is needed");
    // The first event sent opens this end of the transport: afterwards this process can be called.
    std::int32_t const parent = ::getppid();
    AppleEvent const hello =
        testEvent(AEEventID("helo"), NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(
                                         typeKernelProcessID, &parent, sizeof parent));
    AESendMessage(&hello, nullptr, kAENoReply, kNoTimeOut);
    say("ready");
    while (!s_isToQuit)
        NSRunLoop::currentRunLoop().runMode_beforeDate_(NSDefaultRunLoopMode, NSDate::distantFuture());
}

// Calls the parent as another user does, by hand, and tells the error.
void callAsStranger() {
    constexpr uid_t nobody = 65534;
    QString const parent = QStringLiteral("com.tidelark.framekeeper.AppleEvents.p%1").arg(::getppid());
    if (::setuid(nobody) != 0) return say("no other user");
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    QDBusConnection const connection =
        QDBusConnection::connectToBus(QString::fromLocal8Bit(qgetenv("DBUS_SESSION_BUS_ADDRESS")), "stranger");
    if (!connection.isConnected()) return say(connection.lastError().message().toUtf8().constData());
    QDBusMessage message = QDBusMessage::createMethodCall(parent, "/com/tidelark/framekeeper/AppleEvents",
                                                          "com.tidelark.framekeeper.AppleEvents", "Send");
    NSData const event = NSAppleEventDescriptor::descriptorWithAEDesc(testEvent(Back, nil)).data();
    message.setArguments(
        {QByteArray(reinterpret_cast<char const*>(event.bytes()), static_cast<qsizetype>(event.length()))});
    say(connection.call(message).errorName().toUtf8().constData());
}

// Answers events by hand, each on a connection of its own: with the reply it closes one and opens the next.
class MovingPeer : public QDBusVirtualObject {
public:
    void open() {
        QString const name = QStringLiteral("moving-%1").arg(++m_count);
        m_connection = QDBusConnection::connectToBus(QString::fromLocal8Bit(qgetenv("DBUS_SESSION_BUS_ADDRESS")), name);
        QDBusConnection::disconnectFromBus(name);
        m_connection->registerVirtualObject("/com/tidelark/framekeeper/AppleEvents", this);
        m_connection->registerService(QStringLiteral("com.tidelark.framekeeper.AppleEvents.p%1").arg(::getpid()));
        say("ready");
    }
    QString introspect(QString const&) const override { return {}; }
    bool handleMessage(QDBusMessage const& message, QDBusConnection const& connection) override {
        connection.send(message.createReply({0, message.arguments().value(0)}));
        QTimer::singleShot(0, this, [this] {
            // Behind the reply, so that it has left.
            m_connection->call(
                QDBusMessage::createMethodCall("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId"));
            m_connection.reset();
            open();
        });
        return true;
    }

private:
    int m_count = 0;
    std::optional<QDBusConnection> m_connection;
};

// Answers events by hand as earlier versions did, which took no deadline.
class OlderPeer : public QDBusVirtualObject {
public:
    QString introspect(QString const&) const override { return {}; }
    bool handleMessage(QDBusMessage const& message, QDBusConnection const& connection) override {
        bool const isTaken = message.arguments().size() == 1;
        return connection.send(isTaken ? message.createReply({0, message.arguments().value(0)})
                                       : message.createErrorReply(QDBusError::InvalidArgs, "one row of bytes"));
    }
};

int answerAsEarlierVersions(int argc, char** argv) {
    QCoreApplication const application(argc, argv);
    OlderPeer peer;
    QDBusConnection connection =
        QDBusConnection::connectToBus(QString::fromLocal8Bit(qgetenv("DBUS_SESSION_BUS_ADDRESS")), "older");
    connection.registerVirtualObject("/com/tidelark/framekeeper/AppleEvents", &peer);
    connection.registerService(QStringLiteral("com.tidelark.framekeeper.AppleEvents.p%1").arg(::getpid()));
    say("ready");
    return QCoreApplication::exec();
}

int answerOnManyConnections(int argc, char** argv) {
    QCoreApplication const application(argc, argv);
    MovingPeer peer;
    peer.open();
    return QCoreApplication::exec();
}

} // namespace

} // namespace mac::test

int main(int argc, char** argv) {
    // A test that fails early takes its peer along.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getenv("QDBUS_DEBUG")) qInstallMessageHandler(mac::test::tellComplaint);
    if (argc > 1 && std::string_view(argv[1]) == "--moving") return mac::test::answerOnManyConnections(argc, argv);
    if (argc > 1 && std::string_view(argv[1]) == "--older") return mac::test::answerAsEarlierVersions(argc, argv);
    if (argc > 1) {
        mac::test::callAsStranger();
        // Qt's own thread may still read, and complains when what it needs goes first.
        std::_Exit(0);
    }
    // What is called at the exit is called in reverse order: this after the transport's own.
    std::atexit(mac::test::tellWhetherTransportEnded);
    mac::test::run();
    return 0;
}
