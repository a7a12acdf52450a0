#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/processes/ProcessList.h"
#include "platform/system/processes/ProgramFile.h"
#include <algorithm>
#include <array>
#include <fcntl.h>
#include <utility>

namespace mac {

namespace {

// Names, without versions, of programs that run a script named among their arguments. Reading the arguments of every
// process would take as long as all the rest.
constexpr std::array<std::string_view, 24> Interpreters{
    "ash",  "awk",  "bash", "busybox", "dash",   "fish", "gawk", "gjs", "java",  "ksh",  "lua", "mawk",
    "mksh", "node", "perl", "php",     "python", "qml",  "ruby", "sh",  "tclsh", "wish", "zsh", "guile"};

// "python3.11" is python, "perl5.36-x86_64-linux-gnu" is perl.
std::string_view plainName(std::string_view executable) {
    std::string_view const name = BytePath(executable).leaf();
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

// The NUL-terminated strings in a file; nullopt if it cannot be read.
std::optional<std::vector<std::string>> textsIn(std::string const& path) {
    constexpr std::size_t largest = std::size_t{8} << 20;
    Result<FileDescriptor> const file = openPath(path, O_RDONLY);
    if (!file.hasValue()) return std::nullopt;
    Result<FileContents> const contents = readOpenFile(file.value(), largest);
    if (!contents.hasValue()) return std::nullopt;
    std::vector<std::string> texts;
    std::string_view rest(reinterpret_cast<char const*>(contents.value().bytes.data()), contents.value().bytes.size());
    while (!rest.empty()) {
        std::size_t const end = std::min(rest.find('\0'), rest.size());
        texts.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return texts;
}

std::string processPath(std::int32_t pid, char const* name) { return "/proc/" + std::to_string(pid) + "/" + name; }

std::optional<std::string> scriptOf(RunningProcess const& process) {
    std::optional<std::string> const called = calledScript(process);
    std::optional<std::string> script = called ? resolvedFile(*called) : std::nullopt;
    // The arguments are certainly this process's only if it still runs.
    return script && runningProcess(process.identity) ? std::move(script) : std::nullopt;
}

} // namespace

std::optional<std::vector<std::string>> argumentsOf(std::int32_t pid) { return textsIn(processPath(pid, "cmdline")); }

std::optional<std::vector<std::string>> environmentOf(std::int32_t pid) { return textsIn(processPath(pid, "environ")); }

bool isInterpreter(std::string_view executable) {
    return std::ranges::find(Interpreters, plainName(executable)) != Interpreters.end();
}

std::optional<std::string> scriptInCommand(std::string_view executable, std::vector<std::string> const& words) {
    if (!isInterpreter(executable) || words.empty()) return std::nullopt;
    // busybox is one program under many names; the first word tells which one it acts as.
    bool const isBusybox = plainName(executable) == "busybox";
    std::string_view const name = plainName(isBusybox ? std::string_view(words.front()) : executable);
    if (isBusybox && !isShell(name)) return std::nullopt;
    std::string_view const plainOptions = plainOptionsOf(name);
    for (std::size_t index = 1; index < words.size(); ++index) {
        std::string const& word = words[index];
        if (!word.starts_with('-')) return word;
        // An option may take the next word, or put another text in the script's place.
        if (word.size() < 2 || word.find_first_not_of(plainOptions, 1) != std::string::npos) return std::nullopt;
    }
    return std::nullopt;
}

std::string_view bundleHolding(std::string_view path) {
    constexpr std::string_view mark = ".app/Contents/";
    std::size_t const place = path.rfind(mark);
    // A bundle has a name before its extension.
    if (place == std::string_view::npos || place == 0 || path[place - 1] == '/') return {};
    return path.substr(0, place + std::string_view(".app").size());
}

std::string programOf(RunningProcess const& process) {
    if (!bundleHolding(process.executable).empty()) return process.executable;
    return scriptOf(process).value_or(process.executable);
}

} // namespace mac
