#include "fuzz/Trials.h"
#include "platform/system/TemporaryName.h"
#include "platform/system/processes/ProcessList.h"
#include "platform/system/processes/ProcessStatus.h"
#include <algorithm>

namespace mac::fuzz {

namespace {

std::vector<std::string> wordsEndingWithNUL(std::string_view bytes) {
    std::vector<std::string> words;
    while (!bytes.empty()) {
        std::size_t const end = std::min(bytes.find('\0'), bytes.size());
        words.emplace_back(bytes.substr(0, end));
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    return words;
}

std::string complaintAboutBundlePath(std::string_view path) {
    std::string_view const bundle = bundleHolding(path);
    if (bundle.empty()) return "";
    if (!path.starts_with(bundle) || !bundle.ends_with(".app")) return "a bundle does not lie on the path";
    return path.substr(bundle.size()).starts_with("/Contents/") ? "" : "a bundle does not hold the program";
}

} // namespace

std::string complaintAboutCommandLine(std::string_view bytes) {
    std::vector<std::string> const words = wordsEndingWithNUL(bytes);
    std::string const program = words.empty() ? std::string() : words.front();
    std::optional<std::string> const script = scriptInCommand(program, words);
    if (script && !isInterpreter(program)) return "a program that reads no scripts runs one";
    if (script && std::find(words.begin() + 1, words.end(), *script) == words.end()) return "a script is no word";
    if (script && script->starts_with('-')) return "an option is the script";
    return complaintAboutBundlePath(script.value_or(program));
}

std::string complaintAboutProcessStatus(std::string_view text) {
    std::optional<std::uint64_t> const start = startTimeIn(text);
    if (start && text.find(std::to_string(*start)) == std::string_view::npos) return "a start that the line lacks";
    std::string line = "12 (";
    line.append(text).append(") S 1 12 12 0 -1 4194560 7 0 0 0 1 2 0 0 20 0 1 0 4711 2994176\n");
    return startTimeIn(line) == 4711 ? "" : "a name decides what the start is";
}

std::string complaintAboutTemporaryName(std::string_view bytes) {
    std::optional<ParsedTemporaryName> const parsed = parseTemporaryName(bytes);
    if (!parsed) return "";
    std::string_view const name = bytes.starts_with("._") ? bytes.substr(2) : bytes;
    if (!name.starts_with(temporaryNamePrefix)) return "another name is taken for an unfinished file's";
    // A sidecar's name tells the same.
    std::optional<ParsedTemporaryName> const sidecar = parseTemporaryName("._" + std::string(name));
    if (!sidecar || !(sidecar->owner == parsed->owner) || sidecar->mark != parsed->mark ||
        sidecar->otherMark != parsed->otherMark)
        return "a sidecar has another owner";
    if (parsed->mark && !parsed->accepts(*parsed->mark)) return "a marked item does not go";
    if (parsed->otherMark && !parsed->accepts(*parsed->otherMark)) return "the other marked item does not go";
    OwnerState const state = stateOf(parsed->owner, VolumeSharing::ThisComputerOnly);
    if (parsed->owner.pid <= 0 && state != OwnerState::Unknown) return "an owner that is no process has a state";
    bool const isOwn = parsed->owner == TemporaryOwner::current();
    return !isOwn || state == OwnerState::Runs ? "" : "this process is said to have ended";
}

} // namespace mac::fuzz
