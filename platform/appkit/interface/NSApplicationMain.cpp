#include "platform/appkit/interface/NSApplicationMain.h"
#include "platform/appkit/interface/ApplicationInstance.h"
#include "platform/appkit/interface/InterfaceFile.h"
#include "platform/appkit/views/DisplayConnection.h"
#include "platform/appkit/views/NSApplication.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/text/Localization.h"
#include <QAction>
#include <QGuiApplication>
#include <cstdio>
#include <string>
#include <vector>

namespace mac {

namespace {

int refuse(std::string const& reason) {
    std::fputs((reason + "\n").c_str(), stderr);
    return 1;
}

NSString bundleText(char const* key) {
    return as<NSString>(NSBundle::mainBundle().objectForInfoDictionaryKey_(NSString::stringWithUTF8String_(key)));
}

std::string bytesOfText(NSString const& text) { return text == nil ? std::string() : text.UTF8String(); }

// The action of the window for one of the desktop entry, which bears its name in the property desktopAction.
void performDesktopAction(QWidget const& window, QString const& name) {
    for (QAction* const action : window.findChildren<QAction*>())
        if (action->property("desktopAction").toString() == name) action->trigger();
}

// A program that names no entry of its own for the desktop has no name on the bus and may run several times.
ApplicationInstance::Standing beginInstance(ApplicationInstance& instance, LaunchTokens const& tokens) {
    QString const name = QString::fromStdString(bytesOfText(bundleText("DesktopApplicationID")));
    if (name.isEmpty()) return ApplicationInstance::Standing::IsUnnamed;
    QGuiApplication::setDesktopFileName(name);
    if (wantsOwnInstance()) return ApplicationInstance::Standing::IsUnnamed;
    return instance.begin(name, tokens);
}

int runInterface(NSString const& path, ApplicationInstance& instance) {
    auto loaded = InterfaceFile::load(path);
    if (std::string const* const reason = std::get_if<std::string>(&loaded))
        return refuse("The main interface file " + path.UTF8String() + " cannot be used: " + *reason);
    InterfaceFile const& file = *std::get<std::unique_ptr<InterfaceFile>>(loaded);
    NSApplication const application = NSApplication::sharedApplication();
    if (isEnding(application)) return 0;
    if (file.controllerIsDelegate()) application.setDelegate_(file.controller());
    file.window().makeKeyAndOrderFront_(nil);
    installApplicationEvents();
    instance.setPerforming([window = file.widget()](QString const& action) { performDesktopAction(*window, action); });
    application.run();
    instance.setPerforming({});
    return 0;
}

int runMain(int& argc, char** argv) {
    // For the answers to options, which need no display.
    loadLocalization();
    std::vector<std::string> const words(argv, argv + argc);
    ProgramNames const names{.command = bytesOfText(bundleText("CFBundleExecutable")),
                             .version = bytesOfText(bundleText("CFBundleShortVersionString"))};
    if (std::optional<int> const status = answerOptions(words, names)) return *status;
    LaunchTokens const tokens = LaunchTokens::fromEnvironment();
    std::unique_ptr<QApplication> const connection = connectToDisplay(argc, argv);
    if (!connection) return 1;
    ApplicationInstance instance;
    if (beginInstance(instance, tokens) == ApplicationInstance::Standing::OtherWasRaised) return 0;
    // Once more, since an application takes the texts of the toolkit, too.
    loadLocalization();
    NSBundle const bundle = NSBundle::mainBundle();
    NSString const name = bundleText("NSMainNibFile");
    if (name == nil) return refuse("The program's information file names no main interface file (NSMainNibFile).");
    NSString const path = bundle.pathForResource_ofType_(name, "ui");
    if (path == nil)
        return refuse("The main interface file " + name.UTF8String() + ".ui is not in the program's resources.");
    return runInterface(path, instance);
}

} // namespace

int NSApplicationMain(int argc, char** argv) {
    int status = 1;
    guarded([&] { status = runMain(argc, argv); });
    return status;
}

} // namespace mac
