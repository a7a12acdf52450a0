#include "platform/desktop/XfceApplications.h"
#include "platform/desktop/KeyFile.h"
#include <algorithm>
#include <array>
#include <string_view>

namespace mac {

namespace {

constexpr char EntryGroup[] = "Desktop Entry";

bool isLauncher(std::string_view program) {
    constexpr std::array<std::string_view, 2> launchers{"exo-open", "xfce4-mime-helper"};
    return std::ranges::find(launchers, program.substr(program.rfind('/') + 1)) != launchers.end();
}

// What the user has chosen for the category, or the system's default.
std::optional<std::string> chosenHelper(std::string const& category) {
    for (std::string const& folder : configFolders()) {
        KeyFile const choices = KeyFile::readFile(folder + "/xfce4/helpers.rc");
        if (std::optional<std::string> name = choices.text("", category); name && !name->empty()) return name;
    }
    return std::nullopt;
}

std::optional<KeyFile> helperNamed(std::string const& name) {
    // A name is no path out of the folders.
    if (name.find('/') != std::string::npos) return std::nullopt;
    for (std::string const& folder : dataFolders()) {
        KeyFile entry = KeyFile::readFile(std::string(folder).append("/xfce4/helpers/").append(name) + ".desktop");
        if (entry.value(EntryGroup, "Type") == "X-XFCE-Helper") return entry;
    }
    return std::nullopt;
}

// The words of the helper's command, in which %B stands for the program and "%s" for what is to be opened.
std::vector<std::string> wordsOf(KeyFile const& helper, std::string const& binary) {
    for (std::string const& line : helper.list(EntryGroup, "X-XFCE-CommandsWithParameter")) {
        std::optional<std::vector<std::string>> words = wordsOfCommandLine(line);
        if (!words || words->empty() || words->front() != "%B") continue;
        words->front() = binary;
        std::ranges::replace(*words, "%s", "%u");
        return *words;
    }
    return {binary, "%u"};
}

} // namespace

std::optional<DesktopApplication> xfceApplication(DesktopApplication const& application) {
    bool const isByCategory = application.words.size() > 2 && application.words[1] == "--launch";
    if (!isByCategory || !isLauncher(application.executable)) return std::nullopt;
    std::optional<std::string> const name = chosenHelper(application.words[2]);
    std::optional<KeyFile> const helper = name ? helperNamed(*name) : std::nullopt;
    if (!helper) return std::nullopt;
    for (std::string const& binary : helper->list(EntryGroup, "X-XFCE-Binaries")) {
        std::optional<std::string> const program = resolvedProgram(binary);
        if (!program) continue;
        DesktopApplication chosen = application;
        chosen.executable = *program;
        chosen.words = wordsOf(*helper, binary);
        return chosen;
    }
    return std::nullopt;
}

} // namespace mac
