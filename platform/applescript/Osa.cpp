#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/LongPath.h"
#include "platform/system/StandardStreams.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <iostream>
#include <unistd.h>

// osa [-s FLAGS] [-e LINE]... [FILE [ARGUMENT]...]: runs a script and prints its result; in messages it has the name
// that it was started by. FLAGS: h for people, s as source, e errors to standard error, o errors to standard output.
// Without -e and FILE the script is read from standard input.

namespace {

using namespace mac::applescript;

struct CommandLine {
    bool isSourceForm{false};
    bool printsErrorsToOutput{false};
    bool hasLines{false};
    std::string source{};
    // Empty unless the script was read from a file.
    std::string scriptFile{};
    std::vector<std::string> operands{};
};

// The name that the command was started by; one of its names if the starter told none.
std::string const& ownName() {
    static std::string const name = *::program_invocation_short_name ? ::program_invocation_short_name : "osa";
    return name;
}

std::string usage() { return "usage: " + ownName() + " [-s FLAGS] [-e LINE]... [FILE [ARGUMENT]...]"; }

int complain(std::string_view what) {
    std::cerr << ownName() << ": " << what << '\n';
    return 2;
}

void takeFlags(std::string_view flags, CommandLine& line) {
    for (char const flag : flags) {
        if (flag == 's' || flag == 'h') line.isSourceForm = flag == 's';
        if (flag == 'e' || flag == 'o') line.printsErrorsToOutput = flag == 'o';
    }
}

std::optional<CommandLine> read(std::vector<std::string> const& words) {
    CommandLine line;
    std::size_t index = 0;
    for (; index < words.size(); ++index) {
        std::string_view const word = words[index];
        bool const takesValue = word == "-e" || word == "-s" || word == "-l";
        if (!takesValue) break;
        if (++index == words.size()) return {};
        if (word == "-s") takeFlags(words[index], line);
        if (word != "-e") continue;
        if (line.hasLines) line.source += '\n';
        line.source += words[index];
        line.hasLines = true;
    }
    // Such a word in the place of a file is an option that there is not; a file of that name follows "--".
    bool const isInPlaceOfFile = !line.hasLines && index < words.size();
    bool const isUnknown =
        isInPlaceOfFile && words[index].starts_with('-') && words[index] != "-" && words[index] != "--";
    if (isUnknown) return {};
    if (index < words.size() && words[index] == "--") ++index;
    line.operands.assign(words.begin() + static_cast<std::ptrdiff_t>(index), words.end());
    return line;
}

// Reads to the end of a file of any kind: a script may come from a pipe or a terminal.
mac::Result<std::string> contentsOf(mac::FileDescriptor const& file, std::string const& name) {
    std::string contents;
    std::array<char, 16384> buffer{};
    for (;;) {
        ssize_t const count = ::read(file.number(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return mac::lastSystemError("read", name);
        if (count == 0) return contents;
        contents.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

mac::Result<std::string> scriptIn(std::string const& name) {
    mac::Result<mac::FileDescriptor> const file = mac::openPath(name, O_RDONLY | O_NOCTTY);
    if (!file.hasValue()) return file.problem();
    return contentsOf(file.value(), name);
}

mac::Result<std::string> scriptOnInput() {
    mac::FileDescriptor const input(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0));
    if (!input.isOpen()) return mac::lastSystemError("dup", "standard input");
    return contentsOf(input, "standard input");
}

// A byte of a name that is no text comes out as it went in.
std::string bytesOf(std::u16string const& text) {
    return mac::fileSystemBytesFromUnits(text).value_or(mac::utf8FromUnits(text));
}

std::u16string sourceIn(std::string_view bytes) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());
    return mac::unitsFromFileSystemBytes(bytes);
}

// Where an error begins, as editors count: "letters.applescript:2:7", or "line 2, column 7" of a script in no file.
std::string placeForPeople(CommandLine const& line, SourceRange const& range) {
    std::u16string const source = sourceIn(line.source);
    std::size_t lines = 1;
    std::size_t lineStart = 0;
    for (std::size_t index = 0; index < std::min<std::size_t>(range.start, source.size()); ++index) {
        bool const isBeforeLineFeed = index + 1 < source.size() && source[index + 1] == u'\n';
        bool const isEnd = source[index] == u'\n' || (source[index] == u'\r' && !isBeforeLineFeed);
        if (!isEnd) continue;
        ++lines;
        lineStart = index + 1;
    }
    std::string const number = std::to_string(lines);
    std::string const column = std::to_string(range.start - lineStart + 1);
    if (line.scriptFile.empty()) return "line " + number + ", column " + column;
    return line.scriptFile + ":" + number + ":" + column;
}

// To programs an error's place is the range of its characters, as the system's own command prints it.
std::string placeOf(ScriptError const& error, CommandLine const& line) {
    SourceRange const range = error.range.value_or(SourceRange());
    bool const isForPeople =
        mac::isTerminal(line.printsErrorsToOutput ? mac::StandardStream::Output : mac::StandardStream::Errors);
    if (isForPeople) return placeForPeople(line, range);
    return std::to_string(range.start) + ":" + std::to_string(range.end);
}

int report(ScriptError const& error, CommandLine const& line) {
    std::ostream& stream = line.printsErrorsToOutput ? std::cout : std::cerr;
    stream << placeOf(error, line) << ": " << (error.isSyntax ? "syntax" : "execution")
           << " error: " << bytesOf(error.message) << " (" << error.number << ")\n";
    return 1;
}

// Prints a result; the exit status.
int print(std::string const& result) {
    mac::Result<void> const written = mac::writeTo(mac::StandardStream::Output, result + '\n');
    if (written.isDone()) return 0;
    complain(written.problem().text());
    return 1;
}

int run(CommandLine const& line, std::vector<Value> const& arguments) {
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(sourceIn(line.source), error);
    if (!script) return report(error, line);
    RunOptions options;
    options.log = [](std::u16string const& text) { std::cerr << bytesOf(text) << '\n'; };
    ScriptOutcome const outcome = script->run(options, arguments);
    if (outcome.error) return report(*outcome.error, line);
    if (outcome.value.isNothing()) return 0;
    try {
        return print(bytesOf(line.isSourceForm ? sourceForm(outcome.value) : humanForm(outcome.value)));
    } catch (ScriptError& thrown) {
        thrown.range = SourceRange{};
        return report(thrown, line);
    }
}

} // namespace

int main(int argc, char** argv) {
    // Writing to a pipe without reader keeps ending the process: a script that logs for ever ends with its reader.
    mac::openMissingStreams();
    std::vector<std::string> const words(argv + 1, argv + argc);
    bool const isHelp = words.size() == 1 && (words.front() == "--help" || words.front() == "-h");
    if (isHelp) return print(usage());
    std::optional<CommandLine> line = read(words);
    if (!line) return complain(usage());
    std::size_t firstArgument = 0;
    if (!line->hasLines) {
        bool const isInFile = !line->operands.empty() && line->operands.front() != "-";
        mac::Result<std::string> script = isInFile ? scriptIn(line->operands.front()) : scriptOnInput();
        if (!script.hasValue()) return complain(script.problem().text());
        line->source = script.takeValue();
        if (isInFile) line->scriptFile = line->operands.front();
    }
    if (!line->hasLines && !line->operands.empty()) firstArgument = 1;
    std::vector<Value> arguments;
    for (std::size_t index = firstArgument; index < line->operands.size(); ++index)
        arguments.push_back(Value::text(mac::unitsFromFileSystemBytes(line->operands[index])));
    return run(*line, arguments);
}
