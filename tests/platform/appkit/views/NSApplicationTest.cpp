#include "platform/appkit/views/NSApplication.h"
#include "platform/appkit/interface/ApplicationInstance.h"
#include "platform/appkit/interface/NSApplicationMain.h"
#include "platform/appkit/views/DisplayConnection.h"
#include "platform/desktop/session/Patience.h"
#include "platform/events/AppleEvents.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/NSNotificationCenter.h"
#include "platform/foundation/running/UserInterface.h"
#include "platform/processes/Processes.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/platform/desktop/VirtualSession.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace mac::test {
namespace {

void unsetDisplays() {
    for (char const* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        ::unsetenv(name);
}

[[noreturn]] void runProgram() {
    static char name[] = "program";
    static char* arguments[]{name, nullptr};
    std::_Exit(NSApplicationMain(1, arguments));
}

class NSApplicationDeathTest : public testing::Test {
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_F(NSApplicationDeathTest, EndsWithALineWhenNoDisplayIsSet) {
    EXPECT_EXIT(
        {
            unsetDisplays();
            runProgram();
        },
        testing::ExitedWithCode(1), "^Cannot open a window: there is no display.*\n$");
}

TEST_F(NSApplicationDeathTest, EndsWithALineIfNoServerAnswersAtTheDisplay) {
    EXPECT_EXIT(
        {
            unsetDisplays();
            ::setenv("DISPLAY", ":4217", 1);
            runProgram();
        },
        testing::ExitedWithCode(1), "^Cannot open a window: the display :4217 cannot be used\\.\n$");
}

// Listens where an X server of that display would, and says nothing.
class SilentDisplay {
public:
    SilentDisplay() {
        for (m_number = 4300; m_number < 4400 && !listenAt(m_number); ++m_number) {}
    }
    ~SilentDisplay() { ::close(m_socket); }
    std::string name() const { return ":" + std::to_string(m_number); }

private:
    bool listenAt(int number) {
        m_socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::string const path = "/tmp/.X11-unix/X" + std::to_string(number);
        // An abstract name: nothing is left on the disk.
        path.copy(address.sun_path + 1, path.size());
        auto const length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + path.size());
        if (::bind(m_socket, reinterpret_cast<sockaddr const*>(&address), length) == 0 && ::listen(m_socket, 8) == 0)
            return true;
        ::close(m_socket);
        return false;
    }

    int m_socket{-1};
    int m_number;
};

[[noreturn]] void connectToSilentDisplay() {
    SilentDisplay const display;
    unsetDisplays();
    ::setenv("DISPLAY", display.name().c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    static char name[] = "program";
    static char* arguments[]{name, nullptr};
    int count = 1;
    connectToDisplay(count, arguments, std::chrono::milliseconds(200));
    std::_Exit(0);
}

TEST_F(NSApplicationDeathTest, EndsWithALineWhenTheDisplayDoesNotAnswer) {
    EXPECT_EXIT(connectToSilentDisplay(), testing::ExitedWithCode(1), "Cannot open a window: .*does not answer");
}

TEST_F(NSApplicationDeathTest, EndsWithALineForAPlatformThatDoesNotExist) {
    EXPECT_EXIT(
        {
            unsetDisplays();
            ::setenv("QT_QPA_PLATFORM", "steeringwheel", 1);
            runProgram();
        },
        testing::ExitedWithCode(1), "Cannot open a window: the display \\(QT_QPA_PLATFORM is steeringwheel\\)");
}

TEST_F(NSApplicationDeathTest, EndsWithALineWithoutAMainInterfaceFile) {
    EXPECT_EXIT(
        {
            unsetDisplays();
            ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
            runProgram();
        },
        testing::ExitedWithCode(1), "NSMainNibFile");
}

// Answers 0 if the application does not run.
[[noreturn]] void runAfterItsEnd() {
    unsetDisplays();
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    NSApplication const application = NSApplication::sharedApplication();
    application.terminate_(nil);
    QTimer event;
    QObject::connect(&event, &QTimer::timeout, [] { std::_Exit(2); });
    event.start(0);
    application.run();
    event.stop();
    // The end that came before is over with that.
    QTimer::singleShot(0, [] { std::_Exit(0); });
    application.run();
    std::_Exit(3);
}

TEST_F(NSApplicationDeathTest, DoesNotRunIfItWasEndedBefore) {
    EXPECT_EXIT(runAfterItsEnd(), testing::ExitedWithCode(0), "");
}

[[noreturn]] void runWithoutDisplay() {
    unsetDisplays();
    NSApplication const application = NSApplication::sharedApplication();
    QTimer::singleShot(0, [&] { application.terminate_(nil); });
    application.run();
    std::_Exit(isSame(application, NSApplication::sharedApplication()) ? 0 : 1);
}

TEST_F(NSApplicationDeathTest, RunsWithoutADisplay) {
    EXPECT_EXIT(runWithoutDisplay(), testing::ExitedWithCode(0), "^Cannot open a window: there is no display.*\n$");
}

// Answers 0 if dialogs can be shown on a display that was not there when they were first asked for, in a program that
// made no application object.
template <class Function>
int statusWithLaterDisplay(Function useProgram) {
    unsetDisplays();
    if (userInterface()) return 2;
    // The toolkit ends the process if its display goes.
    static VirtualDisplay const display;
    useProgram();
    return userInterface() && userInterface() == userInterface() ? 0 : 3;
}

TEST_F(NSApplicationDeathTest, IsMadeForDialogsOnADisplayThatComesLater) {
    std::optional<std::string> const obstacle = VirtualDisplay::obstacle();
    if (obstacle) GTEST_SKIP() << *obstacle;
    EXPECT_EXIT(std::_Exit(statusWithLaterDisplay([] {})), testing::ExitedWithCode(0), "");
}

TEST_F(NSApplicationDeathTest, IsMadeForDialogsAfterTheEventLoop) {
    std::optional<std::string> const obstacle = VirtualDisplay::obstacle();
    if (obstacle) GTEST_SKIP() << *obstacle;
    EXPECT_EXIT(std::_Exit(statusWithLaterDisplay(requireEventLoop)), testing::ExitedWithCode(0), "");
}

TEST(DisplayConnection, IsNotThereWhileTheDisplayDoesNotAnswer) {
    SilentDisplay const silent;
    EnvironmentVariable const display("DISPLAY", silent.name());
    EnvironmentVariable const wayland("WAYLAND_DISPLAY", std::nullopt);
    Patience const patience(std::chrono::milliseconds(100));
    EXPECT_FALSE(isDisplayThere());
}

// A delegate that answers what it is told to.
class Delegate : public Handle<Delegate, NSObject> {
public:
    class Body : public ObjectBody {
    public:
        bool answer{false};
        int asked{0};
    };
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {.name = "Delegate",
                .superclass = classOf<NSObject>(),
                .methods = {method<&Delegate::applicationShouldTerminateAfterLastWindowClosed_>(
                    "applicationShouldTerminateAfterLastWindowClosed:")}};
    }
    bool applicationShouldTerminateAfterLastWindowClosed_(id const&) const {
        ++bodyOf(*this)->asked;
        return bodyOf(*this)->answer;
    }
};

TEST(NSApplication, EndsAfterTheLastWindowWhenTheDelegateSaysSo) {
    LoadedWindow const window;
    Delegate const delegate = adopt<Delegate>();
    bodyOf(delegate)->answer = true;
    NSApplication const application = NSApplication::sharedApplication();
    application.setDelegate_(delegate);
    QTimer::singleShot(0, [&] { window.file().window().close(); });
    application.run();
    EXPECT_EQ(bodyOf(delegate)->asked, 1);
    EXPECT_FALSE(window.file().window().isVisible());
}

TEST(NSApplication, ContinuesAfterTheLastWindowIfTheDelegateSaysNo) {
    LoadedWindow const window;
    Delegate const delegate = adopt<Delegate>();
    NSApplication const application = NSApplication::sharedApplication();
    application.setDelegate_(delegate);
    int later = 0;
    QTimer::singleShot(0, [&] {
        window.file().window().close();
        QTimer::singleShot(0, [&] {
            ++later;
            application.terminate_(nil);
        });
    });
    application.run();
    EXPECT_EQ(bodyOf(delegate)->asked, 1);
    EXPECT_EQ(later, 1);
}

OSStatus sendToItself(AEEventID eventID) { return sendEvent({0, kCurrentProcess}, kCoreEventClass, eventID); }

// Counts the notifications of an application's end.
class EndListener : public Handle<EndListener, NSObject> {
public:
    class Body : public ObjectBody {
    public:
        int ends{0};
    };
    using Handle::Handle;
    static ClassDescription describeClass() {
        return {.name = "EndListener",
                .superclass = classOf<NSObject>(),
                .methods = {method<&EndListener::applicationEnds_>("applicationEnds:")}};
    }
    void applicationEnds_(id const&) const { ++bodyOf(*this)->ends; }
};

// What becomes of a program that is asked to quit while its window is open.
void askToQuit(BOOL delegateEndsIt) {
    LoadedWindow const window;
    Delegate const delegate = adopt<Delegate>();
    bodyOf(delegate)->answer = bool(delegateEndsIt);
    NSApplication const application = NSApplication::sharedApplication();
    application.setDelegate_(delegate);
    EndListener const listener = adopt<EndListener>();
    NSNotificationCenter::defaultCenter().addObserver_selector_name_object_(
        listener, "applicationEnds:", NSApplicationWillTerminateNotification, nil);
    installApplicationEvents();
    bool wasOpenAtReply = false;
    QTimer::singleShot(0, [&] {
        EXPECT_EQ(sendToItself(kAEQuitApplication), noErr);
        wasOpenAtReply = window.file().window().isVisible();
    });
    application.run();
    EXPECT_TRUE(wasOpenAtReply);
    EXPECT_FALSE(window.file().window().isVisible());
    EXPECT_EQ(bodyOf(delegate)->asked, 1);
    EXPECT_EQ(bodyOf(listener)->ends, 1);
    NSNotificationCenter::defaultCenter().removeObserver_(listener);
}

TEST(NSApplication, RepliesAndThenQuitsWhenAskedTo) {
    askToQuit(YES);
    askToQuit(NO);
}

TEST(NSApplication, IsOpenedAndComesToTheFrontWhenItIsOpenedAgain) {
    LoadedWindow const window;
    installApplicationEvents();
    window.file().window().makeKeyAndOrderFront_(nil);
    // In front of it, as another program's would be.
    QWindow other;
    other.show();
    other.requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other, 60'000));
    EXPECT_EQ(sendToItself(kAEOpenApplication), noErr);
    EXPECT_FALSE(window.widget()->isActiveWindow());
    EXPECT_EQ(sendToItself(kAEReopenApplication), noErr);
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.widget(), 60'000));
    EXPECT_EQ(sendToItself(AEEventID("odoc")), errAEEventNotHandled);
}

TEST(NSApplication, DoesNotKeepItsDelegateAlive) {
    needApplication();
    NSApplication const application = NSApplication::sharedApplication();
    application.setDelegate_(adopt<Delegate>());
    EXPECT_TRUE(application.delegate() == nil);
}

} // namespace
} // namespace mac::test
