#include "platform/appkit/interface/ApplicationInstance.h"
#include "platform/events/AppleEvents.h"
#include "platform/processes/Processes.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Environment.h"
#include "tests/support/RunUntil.h"
#include "tests/support/TemporaryFolder.h"
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVirtualObject>
#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <sys/wait.h>
#include <unistd.h>

// The program runs once in a session.

namespace framekeeper::test {
namespace {

using namespace mac;
using mac::test::ChildProcess;
using mac::test::EnvironmentVariable;
using mac::test::runUntil;
using mac::test::TemporaryFolder;
using mac::test::textOf;

constexpr char InstanceName[] = "example.framekeeper.Framekeeper";
constexpr char InstancePath[] = "/example/framekeeper/Framekeeper";
constexpr char InstanceInterface[] = "org.freedesktop.Application";

// Another instance, which writes down how it is asked.
class RecordingInstance : public QDBusVirtualObject {
public:
    RecordingInstance() {
        m_connection.registerVirtualObject(InstancePath, this);
        EXPECT_TRUE(m_connection.registerService(InstanceName));
    }
    ~RecordingInstance() override {
        m_connection.unregisterService(InstanceName);
        QDBusConnection::disconnectFromBus("recording");
    }

    QString introspect(QString const&) const override { return {}; }
    bool handleMessage(QDBusMessage const& message, QDBusConnection const& connection) override {
        m_method = message.member().toStdString();
        QVariantMap const data = qdbus_cast<QVariantMap>(message.arguments().value(0));
        m_activation = data.value("activation-token").toString().toStdString();
        m_startup = data.value("desktop-startup-id").toString().toStdString();
        connection.send(m_hasWindow ? message.createReply()
                                    : message.createErrorReply(QDBusError::Failed, "There is no window"));
        return true;
    }

    bool m_hasWindow = true;
    std::string m_method;
    std::string m_activation;
    std::string m_startup;

private:
    QDBusConnection m_connection = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "recording");
};

class OneInstance : public testing::Test {
protected:
    OneInstance() {
        // The toolkit's connections need it.
        performOnMainRunLoop([] {});
    }

    static bool hasEnded(ChildProcess const& program) {
        siginfo_t information{};
        return ::waitid(P_PID, static_cast<id_t>(program.pid()), &information, WEXITED | WNOHANG | WNOWAIT) == 0 &&
               information.si_pid != 0;
    }
    // Waits until the program's window is there: it answers from then on. nullopt if it ends without one.
    static std::optional<ProcessSerialNumber> openedUnlessEnded(ChildProcess const& program) {
        std::optional<ProcessSerialNumber> found;
        auto const isOpen = [&] {
            ProcessSerialNumber psn{};
            if (GetProcessForPID(program.pid(), &psn) != noErr) return false;
            if (sendEvent(psn, kCoreEventClass, kAEOpenApplication) != noErr) return false;
            found = psn;
            return true;
        };
        constexpr double muchTime = 600;
        EXPECT_TRUE(runUntil([&] { return hasEnded(program) || isOpen(); }, muchTime));
        return found;
    }
    static ProcessSerialNumber opened(ChildProcess const& program) {
        std::optional<ProcessSerialNumber> const psn = openedUnlessEnded(program);
        EXPECT_TRUE(psn) << "it has ended";
        return psn.value_or(ProcessSerialNumber{});
    }
    // Whether a second start ends by itself. On a busy computer the first may answer later than the second waits for
    // it, which then says so and opens a window of its own: that one is tried again.
    bool secondStartEnds(std::function<void()> const& answer) const {
        std::string const log = m_home.path("log");
        for (int attempt = 0; attempt < 20; ++attempt) {
            ChildProcess second({"/bin/sh", "-c", R"(exec "$0" 2>"$1")", PROGRAM, log});
            answer();
            std::optional<ProcessSerialNumber> const psn = openedUnlessEnded(second);
            if (!psn) return second.wait() == 0;
            quit(second, *psn);
            std::string const said = textOf(log);
            bool const wasNotAnswered = said.find("has not answered") != std::string::npos;
            EXPECT_TRUE(wasNotAnswered) << "it opened a window and said: " << said;
            if (!wasNotAnswered) return false;
        }
        return false;
    }
    static void quit(ChildProcess& program, ProcessSerialNumber const& psn) {
        EXPECT_EQ(sendEvent(psn, kCoreEventClass, kAEQuitApplication), noErr);
        EXPECT_EQ(program.wait(), 0);
    }

    TemporaryFolder const m_home{};
    EnvironmentVariable const m_homeVariable{"HOME", m_home.path()};
    EnvironmentVariable const m_platform{"QT_QPA_PLATFORM", "offscreen"};
    EnvironmentVariable const m_narrowed{"FRAMEKEEPER_LOCAL_COMPUTER", m_home.path()};
    EnvironmentVariable const m_own{"FRAMEKEEPER_OWN_INSTANCE", std::nullopt};
};

TEST_F(OneInstance, ASecondStartEndsOnceTheFirstIsInFront) {
    ChildProcess first({PROGRAM});
    ProcessSerialNumber const psn = opened(first);
    EXPECT_TRUE(secondStartEnds([] {}));
    EXPECT_FALSE(hasEnded(first));
    quit(first, psn);
    // The name is free again.
    ChildProcess third({PROGRAM});
    quit(third, opened(third));
}

// However long that takes.
TEST_F(OneInstance, IsRaisedByAnInstanceThatWaitsForIt) {
    ChildProcess first({PROGRAM});
    ProcessSerialNumber const psn = opened(first);
    ApplicationInstance second;
    EXPECT_EQ(second.begin(InstanceName, {}, std::chrono::minutes(10)), ApplicationInstance::Standing::OtherWasRaised);
    quit(first, psn);
}

TEST_F(OneInstance, HandsOnWhatTheLauncherGaveTheSecondStart) {
    EnvironmentVariable const activation("XDG_ACTIVATION_TOKEN", "token-7");
    EnvironmentVariable const startup("DESKTOP_STARTUP_ID", "launcher-1_TIME500");
    RecordingInstance first;
    EXPECT_TRUE(secondStartEnds([&] {
        first.m_method.clear();
        EXPECT_TRUE(runUntil([&] { return !first.m_method.empty(); }));
    }));
    EXPECT_EQ(first.m_method, "Activate");
    EXPECT_EQ(first.m_activation, "token-7");
    EXPECT_EQ(first.m_startup, "launcher-1_TIME500");
}

TEST_F(OneInstance, ASecondStartOpensAWindowOfItsOwnWhileTheFirstHangs) {
    ChildProcess first({PROGRAM});
    ProcessSerialNumber const psn = opened(first);
    first.sendSignal(SIGSTOP);
    ChildProcess second({PROGRAM});
    quit(second, opened(second));
    first.sendSignal(SIGCONT);
    quit(first, psn);
}

TEST_F(OneInstance, ASecondStartSaysWhyTheFirstDoesNotComeToTheFront) {
    RecordingInstance first;
    first.m_hasWindow = false;
    std::string const log = m_home.path("log");
    std::string said = "has not answered";
    // On a busy computer the answer may come later than it is waited for.
    for (int attempt = 0; attempt < 20 && said.find("has not answered") != std::string::npos; ++attempt) {
        ChildProcess second({"/bin/sh", "-c", R"(exec "$0" 2>"$1")", PROGRAM, log});
        first.m_method.clear();
        EXPECT_TRUE(runUntil([&] { return !first.m_method.empty(); }));
        quit(second, opened(second));
        said = textOf(log);
    }
    EXPECT_NE(said.find("The other instance cannot come to the front (There is no window); this one opens"),
              std::string::npos)
        << said;
}

TEST_F(OneInstance, OpensAWindowOfItsOwnIfTheEnvironmentAsksForOne) {
    ChildProcess first({PROGRAM});
    ProcessSerialNumber const psn = opened(first);
    EnvironmentVariable const own("FRAMEKEEPER_OWN_INSTANCE", "1");
    ChildProcess second({PROGRAM});
    quit(second, opened(second));
    quit(first, psn);
}

TEST_F(OneInstance, HasNoNameWithoutABus) {
    EnvironmentVariable const address("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_home.path("bus"));
    ApplicationInstance instance;
    EXPECT_EQ(instance.begin("example.framekeeper.Test", {}), ApplicationInstance::Standing::IsUnnamed);
}

TEST_F(OneInstance, PerformsTheActionsOfItsDesktopEntry) {
    std::vector<std::string> performed;
    ApplicationInstance instance([&](QString const& action) { performed.push_back(action.toStdString()); });
    ASSERT_EQ(instance.begin(InstanceName, {}), ApplicationInstance::Standing::IsFirst);
    QDBusConnection const caller = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "caller");
    auto const ask = [&](char const* method, QVariantList const& arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(InstanceName, InstancePath, InstanceInterface, method);
        message.setArguments(arguments);
        QDBusPendingCallWatcher const call(caller.asyncCall(message));
        bool isFinished = false;
        QObject::connect(&call, &QDBusPendingCallWatcher::finished,
                         [&] { performOnMainRunLoop([&] { isFinished = true; }); });
        EXPECT_TRUE(runUntil([&] { return isFinished; }));
        return call.isValid();
    };
    EXPECT_TRUE(ask("ActivateAction", {"Scan", QVariantList(), QVariantMap()}));
    EXPECT_EQ(performed, std::vector<std::string>{"Scan"});
    // Whoever asks opens a window of its own, since there is none here.
    EXPECT_FALSE(ask("Activate", {QVariantMap()}));
    EXPECT_FALSE(ask("Open", {QStringList(), QVariantMap()}));
    // Arguments of other types, and what the interface does not have.
    EXPECT_FALSE(ask("Activate", {"text"}));
    EXPECT_FALSE(ask("ActivateAction", {"Scan"}));
    EXPECT_FALSE(ask("Quit", {}));
    EXPECT_EQ(performed.size(), 1U);
    QDBusConnection::disconnectFromBus("caller");
}

} // namespace
} // namespace framekeeper::test
