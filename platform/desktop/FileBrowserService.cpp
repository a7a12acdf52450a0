#include "platform/desktop/FileBrowserService.h"
#include "platform/desktop/DesktopApplication.h"
#include "platform/desktop/KeyFile.h"
#include "platform/system/FolderContents.h"
#include "platform/system/processes/DetachedProcess.h"
#include <cstdlib>

namespace mac {

namespace {

bool isSet(char const* variable) {
    char const* const value = std::getenv(variable);
    return value && *value;
}

std::optional<std::vector<std::string>> commandIn(std::string const& serviceFile, FileBrowser const& browser) {
    constexpr char group[] = "D-BUS Service";
    KeyFile const service = KeyFile::readFile(serviceFile);
    if (service.value(group, "Name") != "org.freedesktop.FileManager1") return std::nullopt;
    std::optional<std::string> const commandLine = service.text(group, "Exec");
    std::optional<std::vector<std::string>> words = commandLine ? wordsOfCommandLine(*commandLine) : std::nullopt;
    if (!words || words->empty() || resolvedProgram(words->front()) != browser.application.executable)
        return std::nullopt;
    return words;
}

FileBrowserReach startService(FileBrowser const& browser, std::vector<std::string> const& command) {
    if (!hasDisplay()) return {.outcome = noDisplay()};
    Result<std::int32_t> const process = startDetached(browser.application.executable, command);
    if (!process.hasValue()) return {.outcome = notStarted(process.problem())};
    FinderOutcome const outcome = waitForFileBrowserService(process.value());
    return {outcome.isDone() ? Reach::ByBus : Reach::NotAtAll, outcome};
}

} // namespace

FinderPatience& finderPatience() {
    static FinderPatience patience;
    return patience;
}

FileBrowserReach reachFileBrowser() {
    std::optional<bool> const isOffered = isFileBrowserServiceOffered();
    if (isOffered == true) return {.reach = Reach::ByBus};
    std::optional<FileBrowser> const browser = defaultFileBrowser();
    if (!browser) return {.outcome = noFileBrowser()};
    std::optional<std::vector<std::string>> const command = serviceCommandOf(*browser);
    if (!command) return {.reach = Reach::ByCommand};
    if (!isOffered) return {.outcome = noSessionBus()};
    return startService(*browser, *command);
}

std::optional<std::vector<std::string>> serviceCommandOf(FileBrowser const& browser) {
    for (std::string const& data : dataFolders()) {
        std::string const folder = data + "/dbus-1/services";
        for (std::string const& name : namesInFolder(folder, LinkAtEnd::IsFollowed).valueOr({})) {
            if (!name.ends_with(".service")) continue;
            std::optional<std::vector<std::string>> command =
                commandIn(std::string(folder).append("/").append(name), browser);
            if (command) return command;
        }
    }
    return std::nullopt;
}

bool hasDisplay() { return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY"); }

FinderOutcome noFileBrowser() {
    return {FinderProblem::NoApplication, "The desktop has no default application for folders"};
}

FinderOutcome noSessionBus() { return {FinderProblem::NoBus, "There is no session bus to reach the file browser by"}; }

FinderOutcome noDisplay() { return {FinderProblem::NoDisplay, "There is no display to open a window on"}; }

FinderOutcome notStarted(SystemError const& error) {
    return {FinderProblem::NoAnswer, "The program cannot be started: " + textOfSystemError(error.code)};
}

} // namespace mac
