#include "platform/appkit/NSApplicationMain.h"
#include "platform/appkit/ApplicationEvents.h"
#include "platform/appkit/DisplayConnection.h"
#include "platform/appkit/InterfaceFile.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/Boundary.h"
#include "platform/foundation/Localization.h"
#include "platform/foundation/NSBundle.h"
#include <cstdio>

namespace mac {

namespace {

int refuse(std::string const& reason) {
    std::fputs((reason + "\n").c_str(), stderr);
    return 1;
}

int runInterface(NSString const& path) {
    auto loaded = InterfaceFile::load(path);
    if (std::string const* const reason = std::get_if<std::string>(&loaded))
        return refuse("The main interface file " + path.UTF8String() + " cannot be used: " + *reason);
    InterfaceFile const& file = *std::get<std::unique_ptr<InterfaceFile>>(loaded);
    NSApplication const application = NSApplication::sharedApplication();
    if (isEnding(application)) return 0;
    if (file.controllerIsDelegate()) application.setDelegate_(file.controller());
    file.window().makeKeyAndOrderFront_(nil);
    installApplicationEvents();
    application.run();
    return 0;
}

int runMain(int& argc, char** argv) {
    std::unique_ptr<QApplication> const connection = connectToDisplay(argc, argv);
    if (!connection) return 1;
    loadLocalization();
    NSBundle const bundle = NSBundle::mainBundle();
    NSString const name = as<NSString>(bundle.objectForInfoDictionaryKey_("NSMainNibFile"));
    if (name == nil) return refuse("The program's information file names no main interface file (NSMainNibFile).");
    NSString const path = bundle.pathForResource_ofType_(name, "ui");
    if (path == nil)
        return refuse("The main interface file " + name.UTF8String() + ".ui is not in the program's resources.");
    return runInterface(path);
}

} // namespace

int NSApplicationMain(int argc, char** argv) {
    int status = 1;
    guarded([&] { status = runMain(argc, argv); });
    return status;
}

} // namespace mac
