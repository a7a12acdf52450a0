#include "benchmarks/Timing.h"
#include "platform/desktop/autostart/Autostart.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/preferences/CFPreferences.h"
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

// Reading a list of 500 login items, the first time and again, against the plainest loop that lists the folder and
// reads the same files whole. Each round does all of them, one after the other; the ratios are of the medians.

namespace {

using namespace mac;
using namespace benchmarks;

constexpr int Rounds = 31;
constexpr int Entries = 500;
constexpr double Allowed = 3;

// Entries like those that programs install, each of a program of its own.
void makeEntries(std::filesystem::path const& folder) {
    std::filesystem::create_directories(folder / "config/autostart");
    std::filesystem::create_directories(folder / "bin");
    for (int index = 0; index < Entries; ++index) {
        std::string const name = "program-" + std::to_string(index);
        std::string const program = folder / "bin" / name;
        std::ofstream(program) << "#!/bin/sh\n";
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        std::ofstream entry(folder / "config/autostart" / (name + ".desktop"));
        entry << "[Desktop Entry]\nType=Application\nName=Program " << index << "\nName[de]=Programm " << index
              << "\nComment=Starts with the session\nIcon=system-run\nExec=" << program
              << " --background\nTerminal=false\nNotShowIn=KDE;\nX-GNOME-Autostart-enabled=true\n";
    }
}

std::size_t readPlainly(std::filesystem::path const& folder) {
    std::size_t bytes = 0;
    for (auto const& file : std::filesystem::directory_iterator(folder)) {
        std::vector<char> buffer(4096);
        int const descriptor = ::open(file.path().c_str(), O_RDONLY | O_CLOEXEC);
        for (ssize_t count = 0; (count = ::read(descriptor, buffer.data(), buffer.size())) > 0;)
            bytes += static_cast<std::size_t>(count);
        ::close(descriptor);
    }
    return bytes;
}

std::size_t listed() {
    CFPreferencesSynchronize("loginwindow", kCFPreferencesCurrentUser, kCFPreferencesAnyHost);
    return as<NSArray>(CFPreferencesCopyValue("AutoLaunchedApplicationDictionary", "loginwindow",
                                              kCFPreferencesCurrentUser, kCFPreferencesAnyHost))
        .count();
}

void require(bool isMet, char const* what) {
    if (isMet) return;
    std::fprintf(stderr, "autostart_read: %s\n", what);
    std::exit(1);
}

void report(char const* what, std::vector<double> const& seconds, std::vector<double> const& plain) {
    double const ratio = median(seconds) / median(plain);
    std::printf("%-12s %8.0f us, plain reading %8.0f us: %.2f times as long (at most %.0f)\n", what,
                median(seconds) * 1e6, median(plain) * 1e6, ratio, Allowed);
}

} // namespace

int main() {
    std::string folder = (std::filesystem::temp_directory_path() / "autostart-read-XXXXXX").string();
    require(::mkdtemp(folder.data()) != nullptr, "no temporary folder");
    makeEntries(folder);
    ::setenv("XDG_CONFIG_HOME", (folder + "/config").c_str(), 1);
    ::setenv("XDG_CONFIG_DIRS", (folder + "/none").c_str(), 1);
    ::setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
    std::filesystem::path const autostart = folder + "/config/autostart";
    std::vector<double> plain;
    std::vector<double> first;
    std::vector<double> again;
    for (int round = 0; round < Rounds; ++round) {
        plain.push_back(processorSecondsOf([&] { require(readPlainly(autostart) > 0, "nothing was read"); }));
        // With other settings what is known is forgotten.
        ::setenv("XDG_CONFIG_HOME", (folder + "/none").c_str(), 1);
        require(listed() == 0, "there are other items");
        ::setenv("XDG_CONFIG_HOME", (folder + "/config").c_str(), 1);
        first.push_back(processorSecondsOf([] { require(listed() == Entries, "not all items were read"); }));
        again.push_back(processorSecondsOf([] { require(listed() == Entries, "not all items were read"); }));
    }
    report("first read", first, plain);
    report("again", again, plain);
    std::filesystem::remove_all(folder);
    return 0;
}
