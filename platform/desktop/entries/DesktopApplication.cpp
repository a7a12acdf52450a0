#include "platform/desktop/entries/DesktopApplication.h"
#include "platform/desktop/session/Session.h"
#include "platform/system/BytePath.h"
#include "platform/system/PercentEscapes.h"
#include "platform/system/processes/DetachedProcess.h"
#include "platform/system/processes/ProcessList.h"
#include <algorithm>
#include <array>

namespace mac {

namespace {

// What an application is started with, in the two forms that its command may ask for.
struct Operand {
    std::string path{};
    std::string uri{};
};

// The word with its codes (%f) replaced.
std::string expanded(std::string const& word, DesktopApplication const& application, Operand const& operand) {
    std::string result;
    for (std::size_t index = 0; index < word.size(); ++index) {
        if (word[index] != '%' || index + 1 == word.size()) {
            result.push_back(word[index]);
            continue;
        }
        switch (word[++index]) {
        case '%':
            result.push_back('%');
            break;
        case 'f':
        case 'F':
            result += operand.path;
            break;
        case 'u':
        case 'U':
            result += operand.uri;
            break;
        case 'c':
            result += application.name;
            break;
        case 'k':
            result += application.entryPath;
            break;
        // Other codes are deprecated and expand to nothing.
        default:
            break;
        }
    }
    return result;
}

bool isListOfFiles(std::string const& word) { return word == "%F" || word == "%U"; }

bool standsForFiles(std::string const& word) {
    constexpr std::array codes{"%f", "%F", "%u", "%U"};
    return std::ranges::any_of(codes, [&](char const* code) { return word.find(code) != std::string::npos; });
}

std::vector<std::string> commandWith(DesktopApplication const& application, std::vector<Operand> const& operands) {
    std::vector<std::string> command{application.executable};
    Operand const first = operands.empty() ? Operand() : operands.front();
    bool hasFiles = operands.empty();
    for (std::size_t index = 1; index < application.words.size(); ++index) {
        std::string const& word = application.words[index];
        if (isListOfFiles(word)) {
            for (Operand const& operand : operands)
                command.push_back(word == "%U" ? operand.uri : operand.path);
        } else if (std::string text = expanded(word, application, first); !text.empty()) {
            command.push_back(std::move(text));
        }
        hasFiles = hasFiles || standsForFiles(word);
    }
    // A command without a code for files mostly takes them all the same.
    if (!hasFiles) command.push_back(first.path);
    return command;
}

DesktopProblem noDisplay() { return {DesktopProblem::Kind::NoDisplay, "There is no display to open a window on"}; }

} // namespace

std::optional<DesktopApplication> applicationOfEntry(DesktopEntry const& entry) {
    std::optional<std::vector<std::string>> words = entry.isHidden() ? std::nullopt : entry.command();
    std::optional<std::string> program = words ? resolvedProgram(words->front()) : std::nullopt;
    if (!program) return std::nullopt;
    return DesktopApplication{.entryPath = entry.path(),
                              .name = entry.name().value_or(std::string(BytePath(entry.path()).leaf())),
                              .executable = std::move(*program),
                              .words = std::move(*words),
                              .needsTerminal = entry.needsTerminal()};
}

std::string programOf(DesktopApplication const& application) {
    if (!isInterpreter(application.executable)) return application.executable;
    std::optional<std::string> const script = scriptInCommand(application.executable, application.words);
    return script ? resolvedProgram(*script).value_or("") : "";
}

std::vector<std::string> commandOf(DesktopApplication const& application, std::vector<std::string> const& paths) {
    std::vector<Operand> operands;
    for (std::string const& path : paths)
        operands.push_back({path, fileURIOfPath(path)});
    return commandWith(application, operands);
}

std::string fileURIOfPath(std::string const& path) { return "file://" + percentEscaped(path); }

DesktopResult<std::int32_t> startProgram(ProgramStart const& start) {
    if (!hasDisplay()) return noDisplay();
    Result<std::int32_t> const process = startDetached(start.executable, start.words, start.folder);
    if (process.hasValue()) return process.value();
    SystemError cause = process.problem();
    std::string text = "The program cannot be started: " + cause.text();
    return DesktopProblem{DesktopProblem::Kind::NoAnswer, std::move(text), std::move(cause)};
}

namespace {

DesktopOutcome startCommand(DesktopApplication const& application, std::vector<std::string> words) {
    if (!hasDisplay()) return noDisplay();
    ProgramStart start{.executable = application.executable, .words = std::move(words)};
    if (application.needsTerminal) {
        std::optional<std::string> const terminal = resolvedProgram("x-terminal-emulator");
        if (!terminal)
            return DesktopProblem{DesktopProblem::Kind::Refused, "There is no terminal to run the application in"};
        start.executable = *terminal;
        start.words.insert(start.words.begin(), {*terminal, "-e"});
    }
    DesktopResult<std::int32_t> const started = startProgram(start);
    return started.hasValue() ? DesktopOutcome() : DesktopOutcome(started.problem());
}

} // namespace

DesktopOutcome startApplication(DesktopApplication const& application, std::vector<std::string> const& paths) {
    return startCommand(application, commandOf(application, paths));
}

DesktopOutcome startApplicationAt(DesktopApplication const& application, std::string const& url) {
    return startCommand(application, commandWith(application, {{url, url}}));
}

} // namespace mac
