#include "platform/appkit/views/NSApplication.h"
#include "platform/Registration.h"
#include "platform/appkit/views/DisplayConnection.h"
#include "platform/appkit/views/NSAlert.h"
#include "platform/appkit/views/NSBox.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/running/Beep.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/NSNotificationCenter.h"
#include "platform/foundation/running/UserInterface.h"

namespace mac {

class NSApplication::Body : public ObjectBody {
public:
    // The toolkit's application is not deleted if the host program made it.
    Body() {
        auto* const display = qobject_cast<QApplication*>(QCoreApplication::instance());
        if (!display) return;
        QGuiApplication::setQuitOnLastWindowClosed(false);
        setBeepSound([] {
            if (qApp) QApplication::beep();
        });
        installUserInterface();
        QObject::connect(display, &QGuiApplication::lastWindowClosed, &m_connections,
                         [this] { guarded([&] { lastWindowClosed(); }); });
    }

    void run() {
        if (m_stage == Stage::EndsBeforeRun) {
            m_stage = Stage::Ended;
            return;
        }
        m_stage = Stage::Running;
        QCoreApplication::exec();
        m_stage = Stage::Ended;
    }
    // Whether the application ends now for the first time.
    bool end() {
        if (isEnding()) return false;
        m_stage = m_stage == Stage::Running ? Stage::Ending : Stage::EndsBeforeRun;
        return true;
    }
    bool isEnding() const { return m_stage != Stage::NotRun && m_stage != Stage::Running; }

    WeakReference delegate;

private:
    enum class Stage { NotRun, Running, Ending, EndsBeforeRun, Ended };

    void lastWindowClosed() {
        NSApplication const application = uncheckedCast<NSApplication>(id::retain(this));
        id const asked = delegate.load();
        SEL const question = "applicationShouldTerminateAfterLastWindowClosed:";
        if (!asked.respondsToSelector_(question)) return;
        if (as<NSNumber>(asked.performSelector_withObject_(question, application)).boolValue())
            application.terminate_(nil);
    }

    QObject m_connections;
    Stage m_stage{Stage::NotRun};
};

namespace {

// The toolkit's application lives as long as the process: what would end it ends after the toolkit's own static data.
void connectForever() {
    static int argc = 1;
    static char name[] = "application";
    static char* argv[]{name, nullptr};
    static_cast<void>(connectToDisplay(argc, argv).release());
}

// A display that does not answer is not tried: the toolkit would end the process.
void connectToDisplayThere() {
    if (!isDisplayThere()) return;
    connectForever();
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

} // namespace

void registerViews() {
    registerClasses<NSAlert, NSApplication, NSBox, NSButton, NSControl, NSView>();
    // A program that never made an application object has dialogs, too, if there is a display.
    setEventLoopSource(connectToDisplayThere);
    setUserInterfaceSource([] {
        if (isDisplayThere()) NSApplication::sharedApplication();
    });
}

ClassDescription NSApplication::describeClass() {
    using Self = NSApplication;
    return {
        .name = "NSApplication",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                method<&Self::delegate>("delegate"),
                method<&Self::setDelegate_>("setDelegate:"),
                method<&Self::run>("run"),
                method<&Self::terminate_>("terminate:"),
            },
        .classMethods = {method<&Self::sharedApplication>("sharedApplication")},
        .properties = {property<&Self::delegate, &Self::setDelegate_>("delegate")},
    };
}

NSApplication NSApplication::sharedApplication() {
    static NSApplication const application = [] {
        if (!qobject_cast<QApplication*>(QCoreApplication::instance())) connectForever();
        requireEventLoop();
        return adopt<NSApplication>();
    }();
    return application;
}

id NSApplication::delegate() const { return *this == nil ? id() : bodyOf(*this)->delegate.load(); }

void NSApplication::setDelegate_(id const& delegate) const {
    if (*this != nil) bodyOf(*this)->delegate = delegate;
}

void NSApplication::run() const {
    if (*this != nil) bodyOf(*this)->run();
}

void NSApplication::terminate_(id const&) const {
    if (*this == nil || !bodyOf(*this)->end()) return;
    NSNotificationCenter::defaultCenter().postNotificationName_object_(NSApplicationWillTerminateNotification, *this);
    QCoreApplication::exit(0);
}

bool isEnding(NSApplication const& application) { return application != nil && bodyOf(application)->isEnding(); }

} // namespace mac
