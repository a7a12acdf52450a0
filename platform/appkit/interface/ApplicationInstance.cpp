#include "platform/appkit/interface/ApplicationInstance.h"
#include "platform/appkit/views/NSApplication.h"
#include "platform/desktop/session/Patience.h"
#include "platform/desktop/session/SessionBus.h"
#include "platform/desktop/session/X11Display.h"
#include "platform/events/AppleEvents.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/Log.h"
#include "platform/foundation/running/NSRunLoop.h"
#include <QApplication>
#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QWidget>
#include <cstdlib>

namespace mac {

namespace {

constexpr char ApplicationInterface[] = "org.freedesktop.Application";
constexpr char ActivationTokenKey[] = "activation-token";
constexpr char ActivationVariable[] = "XDG_ACTIVATION_TOKEN";
constexpr char StartupKey[] = "desktop-startup-id";

// "/example/company/Program"
QString objectPathOf(QString const& name) { return '/' + QString(name).replace('.', '/').replace('-', '_'); }

// Of a reply that is no success, or that there was no time for.
std::string complaintOf(QDBusMessage const& reply) {
    QDBusError const error(reply);
    bool const isAnswer = error.type() != QDBusError::NoError && error.type() != QDBusError::NoReply &&
                          error.type() != QDBusError::Timeout;
    if (!isAnswer) return "has not answered";
    return "cannot come to the front (" + error.message().toStdString() + ")";
}

QVariantMap platformData(LaunchTokens const& tokens) {
    QVariantMap data;
    if (!tokens.activation.isEmpty()) data.insert(ActivationTokenKey, tokens.activation);
    if (!tokens.startup.isEmpty()) data.insert(StartupKey, tokens.startup);
    return data;
}

LaunchTokens tokensIn(QVariant const& platformData) {
    QVariantMap const data = qdbus_cast<QVariantMap>(platformData);
    return {.activation = data.value(ActivationTokenKey).toString(), .startup = data.value(StartupKey).toString()};
}

// The server's time in milliseconds at which the user asked for the start: "…_TIME12345". 0 if it does not say.
std::uint32_t timeOfStartup(QString const& startup) {
    constexpr char mark[] = "_TIME";
    qsizetype const place = startup.lastIndexOf(mark);
    return place < 0 ? 0 : startup.sliced(place + 5).toUInt();
}

// A window manager that prevents programs from taking the keyboard lets the user's own wish through, if told its time.
// The launcher's busy sign goes: what was started is in sight.
void tellX11(QWidgetList const& windows, QString const& startup) {
    if (startup.isEmpty() || QGuiApplication::platformName() != "xcb") return;
    Patience const patience;
    auto const display = X11Display::open();
    if (!display) return;
    constexpr std::uint32_t fromApplication = 1;
    std::uint32_t const time = timeOfStartup(startup);
    for (QWidget const* const window : windows) {
        if (time == 0) break;
        display->tellWindowManager(static_cast<std::uint32_t>(window->winId()), "_NET_ACTIVE_WINDOW",
                                   {fromApplication, time, 0});
    }
    display->endStartup(static_cast<std::uint32_t>(windows.last()->winId()), startup.toStdString());
}

// The visible ones, without menus and tool tips; the one that keeps the others from the keyboard last.
QWidgetList windowsToRaise() {
    QWidgetList windows;
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        bool const isWindow = window->windowType() == Qt::Window || window->windowType() == Qt::Dialog;
        if (isWindow && window->isVisible()) windows.push_back(window);
    }
    if (windows.isEmpty()) return windows;
    QWidget* const modal = QApplication::activeModalWidget();
    if (modal && windows.removeOne(modal)) windows.push_back(modal);
    return windows;
}

char const* introspection() {
    return R"(<interface name="org.freedesktop.Application">
  <method name="Activate"><arg type="a{sv}" name="platform_data" direction="in"/></method>
  <method name="Open">
    <arg type="as" name="uris" direction="in"/><arg type="a{sv}" name="platform_data" direction="in"/>
  </method>
  <method name="ActivateAction">
    <arg type="s" name="action_name" direction="in"/><arg type="av" name="parameter" direction="in"/>
    <arg type="a{sv}" name="platform_data" direction="in"/>
  </method>
</interface>
)";
}

} // namespace

LaunchTokens LaunchTokens::fromEnvironment() {
    return {.activation = qEnvironmentVariable(ActivationVariable),
            .startup = qEnvironmentVariable("DESKTOP_STARTUP_ID")};
}

bool raiseWindows(LaunchTokens const& tokens) {
    QWidgetList const windows = windowsToRaise();
    if (windows.isEmpty()) return false;
    // Where the toolkit looks for it when a window asks for the keyboard. Left there, programs that are started later
    // would take it for theirs.
    bool const usesToken = !tokens.activation.isEmpty() && QGuiApplication::platformName().startsWith("wayland");
    if (usesToken) qputenv(ActivationVariable, tokens.activation.toUtf8());
    for (QWidget* const window : windows) {
        window->setWindowState((window->windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
        window->raise();
        window->activateWindow();
    }
    tellX11(windows, tokens.startup);
    if (usesToken) qunsetenv(ActivationVariable);
    return true;
}

class ApplicationInstance::Service : public QDBusVirtualObject {
public:
    explicit Service(Performing perform) : m_perform(std::move(perform)) {}

    QString introspect(QString const&) const override { return introspection(); }

    bool handleMessage(QDBusMessage const& message, QDBusConnection const& connection) override {
        QString const interface = message.interface();
        if (!interface.isEmpty() && interface != ApplicationInterface) return false;
        Answer answer = Answer::HasNoWindow;
        guarded([&] { answer = handle(message); });
        if (answer == Answer::IsUnknown) return false;
        if (!message.isReplyRequired()) return true;
        // Told once the windows are in front: whoever asked may end then, or else opens a window of its own.
        connection.send(
            answer == Answer::IsDone
                ? message.createReply()
                : message.createErrorReply(QDBusError::Failed, "There is no window to bring to the front."));
        return true;
    }

    Performing m_perform;

private:
    enum class Answer { IsUnknown, IsDone, HasNoWindow };

    static Answer raise(QVariant const& platformData) {
        return raiseWindows(tokensIn(platformData)) ? Answer::IsDone : Answer::HasNoWindow;
    }

    Answer handle(QDBusMessage const& message) const {
        QVariantList const arguments = message.arguments();
        QString const method = message.member();
        if (method == "Activate" && message.signature() == "a{sv}") return raise(arguments[0]);
        // There are no documents to open.
        if (method == "Open" && message.signature() == "asa{sv}") return raise(arguments[1]);
        if (method != "ActivateAction" || message.signature() != "sava{sv}") return Answer::IsUnknown;
        raiseWindows(tokensIn(arguments[2]));
        if (m_perform) m_perform(arguments[0].toString());
        return Answer::IsDone;
    }
};

ApplicationInstance::ApplicationInstance(Performing perform)
    : m_service(std::make_unique<Service>(std::move(perform))) {}

ApplicationInstance::~ApplicationInstance() = default;

void ApplicationInstance::setPerforming(Performing perform) { m_service->m_perform = std::move(perform); }

ApplicationInstance::Standing ApplicationInstance::begin(QString const& name, LaunchTokens const& tokens,
                                                         std::chrono::milliseconds patience) {
    Patience const waiting(patience);
    m_connection = connectToSessionBus();
    if (!m_connection) {
        bool const isExpected = qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS");
        if (isExpected)
            NSLog("The session's bus has not answered; each start of the program opens a window of its own.");
        return Standing::IsUnnamed;
    }
    // Registered before the name is owned, so that no client finds the name without the object.
    m_connection->registerVirtualObject(objectPathOf(name), m_service.get());
    if (requestBusName(*m_connection, name)) return Standing::IsFirst;
    QDBusMessage activation =
        QDBusMessage::createMethodCall(name, objectPathOf(name), ApplicationInterface, "Activate");
    activation.setArguments({platformData(tokens)});
    // The instance may end meanwhile, and the bus would start another one.
    activation.setAutoStartService(false);
    QDBusMessage reply;
    if (auto const left = Patience::left(); left.count() > 0)
        reply = m_connection->call(activation, QDBus::Block, static_cast<int>(left.count()));
    m_connection.reset();
    if (reply.type() == QDBusMessage::ReplyMessage) return Standing::OtherWasRaised;
    NSLog("The other instance %s; this one opens a window of its own.", complaintOf(reply).c_str());
    return Standing::IsUnnamed;
}

bool wantsOwnInstance() {
    char const* const wish = std::getenv("FRAMEKEEPER_OWN_INSTANCE");
    return wish && *wish != '\0';
}

namespace {

OSErr doNothing(AppleEvent const*, AppleEvent*, void*) { return noErr; }

OSErr bringToFront(AppleEvent const*, AppleEvent*, void*) {
    raiseWindows();
    return noErr;
}

// The delegate may have ended the program already when the last window was closed.
void quitNow() {
    QApplication::closeAllWindows();
    NSApplication::sharedApplication().terminate_(nil);
}

OSErr quit(AppleEvent const*, AppleEvent*, void*) {
    performOnMainRunLoop(quitNow);
    return noErr;
}

} // namespace

void installApplicationEvents() {
    AEInstallEventHandler(kCoreEventClass, kAEOpenApplication, doNothing, nullptr, NO);
    AEInstallEventHandler(kCoreEventClass, kAEReopenApplication, bringToFront, nullptr, NO);
    AEInstallEventHandler(kCoreEventClass, kAEQuitApplication, quit, nullptr, NO);
}

} // namespace mac
