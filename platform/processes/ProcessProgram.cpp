#include "platform/foundation/FileDescriptor.h"
#include "platform/processes/ProcessList.h"
#include <algorithm>
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace mac {

namespace {

// Programs that run a script which is named among their arguments, without their versions. To ask each process for its
// arguments would take as long as all the rest.
constexpr std::array<std::string_view, 24> Interpreters{
    "ash",  "awk",  "bash", "busybox", "dash",   "fish", "gawk", "gjs", "java",  "ksh",  "lua", "mawk",
    "mksh", "node", "perl", "php",     "python", "qml",  "ruby", "sh",  "tclsh", "wish", "zsh", "guile"};

// "python3.11" is python, "perl5.36-x86_64-linux-gnu" is perl.
std::string_view plainName(std::string_view executable) {
    std::string_view const name = executable.substr(executable.rfind('/') + 1);
    return name.substr(0, name.find_first_of("0123456789-"));
}

bool isShell(std::string_view name) { return name.ends_with("sh") && name != "tclsh" && name != "wish"; }

// Letters of options that take no argument and leave the script where it is.
std::string_view plainOptionsOf(std::string_view interpreter) {
    if (isShell(interpreter)) return "abefhilmnpuvx";
    if (interpreter == "python") return "BEIOPSbdisuv";
    if (interpreter == "perl") return "TWtw";
    return "";
}

// As many of the words as fit; the last of them may be cut.
std::vector<std::string> argumentsOf(std::int32_t pid) {
    std::vector<std::string> words;
    std::string const path = "/proc/" + std::to_string(pid) + "/cmdline";
    FileDescriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 16384> buffer{};
    ssize_t const size = file.isOpen() ? ::read(file.number(), buffer.data(), buffer.size()) : -1;
    std::string_view rest(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    while (!rest.empty()) {
        std::size_t const end = std::min(rest.find('\0'), rest.size());
        words.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return words;
}

// The first word that is no option. Nothing behind an option that may take the word, or puts another text in the
// script's place.
std::optional<std::string> scriptAmong(std::vector<std::string> const& words, std::string_view plainOptions) {
    for (std::size_t index = 1; index < words.size(); ++index) {
        std::string const& word = words[index];
        if (!word.starts_with('-')) return word;
        if (word.size() < 2 || word.find_first_not_of(plainOptions, 1) != std::string::npos) return std::nullopt;
    }
    return std::nullopt;
}

std::optional<std::string> resolved(std::string const& path) {
    std::unique_ptr<char, decltype(&::free)> const real(::realpath(path.c_str(), nullptr), &::free);
    struct ::stat status {};
    if (!real || ::stat(real.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return std::string(real.get());
}

std::optional<std::string> scriptOf(RunningProcess const& process) {
    if (!isInterpreter(process.executable)) return std::nullopt;
    std::int32_t const pid = process.identity.pid;
    std::optional<std::string> const word =
        scriptAmong(argumentsOf(pid), plainOptionsOf(plainName(process.executable)));
    if (!word || word->empty()) return std::nullopt;
    std::string const folder = "/proc/" + std::to_string(pid) + "/cwd/";
    std::optional<std::string> script = resolved(word->front() == '/' ? *word : folder + *word);
    // What was read is that process's only while it runs.
    return script && runningProcess(process.identity) ? std::move(script) : std::nullopt;
}

} // namespace

bool isInterpreter(std::string_view executable) {
    return std::ranges::find(Interpreters, plainName(executable)) != Interpreters.end();
}

std::string_view bundleHolding(std::string_view path) {
    constexpr std::string_view mark = ".app/Contents/";
    std::size_t const place = path.rfind(mark);
    // A bundle has a name before its extension.
    if (place == std::string_view::npos || place == 0 || path[place - 1] == '/') return {};
    return path.substr(0, place + std::string_view(".app").size());
}

std::optional<std::string> programInBundle(RunningProcess const& process) {
    if (!bundleHolding(process.executable).empty()) return process.executable;
    std::optional<std::string> script = scriptOf(process);
    return script && !bundleHolding(*script).empty() ? std::move(script) : std::nullopt;
}

} // namespace mac
