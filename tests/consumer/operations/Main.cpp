#include "tests/consumer/operations/Trial.h"

#include <clocale>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <unistd.h>

// Calls each operation of the library once. The environment names the user's folders, which are empty, a bus and no
// display; FOLDER is one that the program may write to.

namespace {

// Plays the default file browser: runs until it is ended.
[[noreturn]] void browse() {
    while (true)
        ::pause();
}

void installBrowser(std::filesystem::path const& program, std::filesystem::path const& data) {
    std::filesystem::create_directories(data / "applications");
    std::filesystem::copy_file(program, data / "browser");
    std::ofstream(data / "applications/browser.desktop")
        << "[Desktop Entry]\nType=Application\nName=Browser\nExec=\"" << (data / "browser").string() << "\" --browse\n";
    std::ofstream(data / "applications/mimeapps.list") << "[Default Applications]\ninode/directory=browser.desktop\n";
}

} // namespace

int main(int argc, char** argv) {
    using namespace consumer;
    std::string const argument = argc > 1 ? argv[1] : "";
    if (argument == "--browse") browse();
    char const* const data = std::getenv("XDG_DATA_HOME");
    if (argument.empty() || !data) {
        std::cerr << "usage: XDG_DATA_HOME=FOLDER operations FOLDER\n";
        return 2;
    }
    std::setlocale(LC_ALL, "");
    installBrowser(std::filesystem::read_symlink("/proc/self/exe"), data);
    Places const places(argument);
    tryCollections();
    tryKeyValues();
    tryText(places);
    tryIcons(places);
    tryFiles(places);
    tryFolders(places);
    tryMetadata(places);
    tryContents(places);
    tryNames(places);
    tryScripts();
    tryProcesses(places);
    tryReferences(places);
    tryURLs(places);
    // The last topic, since it asks the program to terminate.
    tryInterface(places);
    return Trial::hasFailed() ? 1 : 0;
}
