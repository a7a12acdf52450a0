#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/foundation/text/Encodings.h"
#include <fstream>
#include <iostream>
#include <iterator>

// osa [-s FLAGS] [-e LINE]... [FILE [ARGUMENT]...]: runs a script and prints its result. FLAGS: h for people, s as
// source, e errors to standard error, o errors to standard output. Without -e and FILE the script is read from standard
// input.

namespace {

using namespace mac::applescript;

struct CommandLine {
    bool isSourceForm{false};
    bool printsErrorsToOutput{false};
    bool hasLines{false};
    std::string source{};
    std::vector<std::string> operands{};
};

int complain(std::string_view what) {
    std::cerr << "osa: " << what << '\n';
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
    if (index < words.size() && words[index] == "--") ++index;
    line.operands.assign(words.begin() + static_cast<std::ptrdiff_t>(index), words.end());
    return line;
}

std::string contentsOf(std::istream& stream) {
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
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

int report(ScriptError const& error, CommandLine const& line) {
    std::ostream& stream = line.printsErrorsToOutput ? std::cout : std::cerr;
    stream << error.range->start << ':' << error.range->end << ": " << (error.isSyntax ? "syntax" : "execution")
           << " error: " << bytesOf(error.message) << " (" << error.number << ")\n";
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
        std::cout << bytesOf(line.isSourceForm ? sourceForm(outcome.value) : humanForm(outcome.value)) << '\n';
    } catch (ScriptError& thrown) {
        thrown.range = SourceRange{};
        return report(thrown, line);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    std::optional<CommandLine> line = read(std::vector<std::string>(argv + 1, argv + argc));
    if (!line) return complain("usage: osa [-s FLAGS] [-e LINE]... [FILE [ARGUMENT]...]");
    std::size_t firstArgument = 0;
    if (!line->hasLines && !line->operands.empty() && line->operands.front() != "-") {
        std::ifstream file(line->operands.front(), std::ios::binary);
        if (!file) return complain(line->operands.front() + ": cannot be read");
        line->source = contentsOf(file);
    } else if (!line->hasLines) {
        line->source = contentsOf(std::cin);
    }
    if (!line->hasLines && !line->operands.empty()) firstArgument = 1;
    std::vector<Value> arguments;
    for (std::size_t index = firstArgument; index < line->operands.size(); ++index)
        arguments.push_back(Value::text(mac::unitsFromFileSystemBytes(line->operands[index])));
    return run(*line, arguments);
}
