#include "fuzz/Trials.h"
#include "platform/system/processes/ProcessList.h"
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

} // namespace mac::fuzz
