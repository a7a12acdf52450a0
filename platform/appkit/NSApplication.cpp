#include "platform/appkit/NSApplication.h"
#include "platform/appkit/DisplayConnection.h"
#include "platform/appkit/UserInterfaceWidgets.h"
#include "platform/foundation/Beep.h"
#include "platform/foundation/Boundary.h"
#include "platform/foundation/Exceptions.h"
#include "platform/foundation/Method.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/Weak.h"

namespace mac {

class NSApplication::Body : public ObjectBody {
public:
    // The toolkit's application lives on where somebody else made it.
    Body() {
        QGuiApplication::setQuitOnLastWindowClosed(false);
        setBeepSound([] {
            if (qApp) QApplication::beep();
        });
        installUserInterface();
        QObject::connect(qApp, &QGuiApplication::lastWindowClosed, &m_connections,
                         [this] { guarded([&] { lastWindowClosed(); }); });
    }

    WeakReference delegate;
    bool isEnding{false};

private:
    void lastWindowClosed() {
        NSApplication const application = uncheckedCast<NSApplication>(id::retain(this));
        id const asked = delegate.load();
        SEL const question = "applicationShouldTerminateAfterLastWindowClosed:";
        if (!asked.respondsToSelector_(question)) return;
        if (as<NSNumber>(asked.performSelector_withObject_(question, application)).boolValue())
            application.terminate_(nil);
    }

    QObject m_connections;
};

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
        static int argc = 1;
        static char name[] = "application";
        static char* argv[]{name, nullptr};
        // It lives as long as the process: what would end it ends after the toolkit's own static data.
        if (!QCoreApplication::instance()) static_cast<void>(connectToDisplay(argc, argv).release());
        if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
            throw NSGenericException("There is no display for an application");
        return adopt<NSApplication>();
    }();
    return application;
}

id NSApplication::delegate() const { return *this == nil ? id() : bodyOf(*this)->delegate.load(); }

void NSApplication::setDelegate_(id const& delegate) const {
    if (*this != nil) bodyOf(*this)->delegate = delegate;
}

void NSApplication::run() const {
    if (*this == nil) return;
    bodyOf(*this)->isEnding = false;
    QApplication::exec();
}

void NSApplication::terminate_(id const&) const {
    if (*this == nil || std::exchange(bodyOf(*this)->isEnding, true)) return;
    NSNotificationCenter::defaultCenter().postNotificationName_object_(NSApplicationWillTerminateNotification, *this);
    QCoreApplication::exit(0);
}

} // namespace mac
