#include "platform/applescript/additions/AdditionKeys.h"
#include "platform/applescript/additions/AdditionParameters.h"
#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ElementAccess.h"
#include "platform/applescript/runtime/ShellCommand.h"
#include "platform/desktop/entries/DesktopEntry.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/processes/DetachedProcess.h"
#include <algorithm>
#include <cmath>

// Volume and speech. Linux: done by the programs of the sound server and of the speech synthesizer.

namespace mac::applescript::additions {

namespace {

constexpr std::size_t MostBytesSaid = 65536;
constexpr int MostPercent = 100;

ScriptError missingProgram(std::u16string_view what) {
    return {.number = errors::ResourceNotFound, .message = std::u16string(what)};
}

// What the program prints. Throws its complaint if it fails.
std::string runProgram(std::vector<std::string> words) {
    ShellCommand command(std::move(words));
    command.collect(MostBytesSaid);
    int const status = command.status();
    if (status == 0) return command.output();
    std::u16string message = unitsFromFileSystemBytes(command.complaints());
    while (message.ends_with(u'\n'))
        message.pop_back();
    if (message.empty()) message = u"The command exited with a non-zero status.";
    throw ScriptError{.number = status, .message = std::move(message)};
}

std::string soundProgram() {
    std::optional<std::string> const program = resolvedProgram("pactl");
    if (!program) throw missingProgram(u"The volume cannot be changed: the program “pactl” is missing.");
    return *program;
}

// What the sound server's program prints, in no language of the user's.
std::string soundAnswer(std::string const& program, char const* command, char const* device) {
    return runProgram({"/usr/bin/env", "LC_ALL=C.UTF-8", program, command, device});
}

// The first percentage in what the sound server says.
std::optional<int> percentageIn(std::string const& text) {
    std::size_t const end = text.find('%');
    if (end == std::string::npos) return {};
    std::size_t start = end;
    while (start > 0 && text[start - 1] >= '0' && text[start - 1] <= '9')
        --start;
    constexpr std::size_t mostDigits = 5;
    if (start == end || end - start > mostDigits) return {};
    return std::stoi(text.substr(start, end - start));
}

Value percentage(std::string const& text) {
    std::optional<int> const found = percentageIn(text);
    return found ? Value::integer(std::min(*found, MostPercent)) : Value::missing();
}

void setPercentage(std::string const& program, char const* command, char const* device, double percent) {
    double const within = std::clamp(percent, 0.0, double{MostPercent});
    runProgram({program, command, device, std::to_string(std::lround(within)) + "%"});
}

constexpr char const* Output = "@DEFAULT_SINK@";
constexpr char const* Input = "@DEFAULT_SOURCE@";

std::string speechProgram() {
    for (char const* const name : {"espeak-ng", "espeak"})
        if (std::optional<std::string> const program = resolvedProgram(name)) return *program;
    throw missingProgram(u"Text cannot be spoken: neither of the programs “espeak-ng” and “espeak” is installed.");
}

void addOption(std::vector<std::string>& words, char const* option, Value const* value, double factor,
               TextContext const& context) {
    if (!value) return;
    constexpr double most = 10000;
    double const number = std::clamp(requireReal(*value, context) * factor, 0.0, most);
    words.insert(words.end(), {option, std::to_string(std::lround(number))});
}

} // namespace

// From 0 to 7, or each volume from 0 to 100.
Value setVolume(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    Value const* const output = arguments.find(keys::OutputVolume);
    Value const* const input = arguments.find(keys::InputVolume);
    Value const* const muted = arguments.find(keys::OutputMuted);
    // Linux: alerts have no volume of their own.
    if (arguments.find(keys::AlertVolume)) throw missingProgram(u"The alert volume cannot be set on this system.");
    bool const isGiven = output || input || muted || !arguments.direct.isNothing();
    if (!isGiven) throw missingParameter(u"output volume", u"set volume");
    std::string const program = soundProgram();
    constexpr double mostOfScale = 7;
    if (!arguments.direct.isNothing())
        setPercentage(program, "set-sink-volume", Output,
                      requireReal(arguments.direct, context) / mostOfScale * MostPercent);
    if (output) setPercentage(program, "set-sink-volume", Output, requireReal(*output, context));
    if (input) setPercentage(program, "set-source-volume", Input, requireReal(*input, context));
    if (muted) runProgram({program, "set-sink-mute", Output, requireBoolean(*muted, context) ? "1" : "0"});
    return {};
}

Value volumeSettings(Evaluator& /*evaluator*/, CommandArguments const& /*arguments*/) {
    std::string const program = soundProgram();
    bool const isMuted = soundAnswer(program, "get-sink-mute", Output).find("yes") != std::string::npos;
    return Value::record({
        {keyOf(keys::OutputVolume), percentage(soundAnswer(program, "get-sink-volume", Output))},
        {keyOf(keys::InputVolume), percentage(soundAnswer(program, "get-source-volume", Input))},
        {keyOf(keys::AlertVolume), Value::missing()},
        {keyOf(keys::OutputMuted), Value::boolean(isMuted)},
    });
}

// The rate is in words a minute; the pitch from 0 to 127, 50 being usual; the volume from 0 to 1.
Value say(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    if (arguments.direct.isNothing()) throw missingParameter(u"direct", u"say");
    std::string const text = utf8FromUnits(requireText(arguments.direct, context));
    std::vector<std::string> words{speechProgram()};
    if (Value const* const voice = arguments.find(parameters::Using))
        words.insert(words.end(), {"-v", utf8FromUnits(requireText(*voice, context))});
    constexpr double fullAmplitude = 100;
    addOption(words, "-s", arguments.find(parameters::SpeakingRate), 1, context);
    addOption(words, "-p", arguments.find(parameters::Pitch), 1, context);
    addOption(words, "-a", arguments.find(parameters::Volume), fullAmplitude, context);
    if (Value const* const file = arguments.find(parameters::SavingTo)) {
        std::optional<std::string> const path = fileSystemBytesFromUnits(requirePath(*file, context));
        if (!path) throw fileNotFound(*file);
        words.insert(words.end(), {"-w", *path});
    }
    words.insert(words.end(), {"--", text});
    Value const* const waits = arguments.find(parameters::WaitingUntilCompletion);
    if (waits && !requireBoolean(*waits, context)) {
        if (!startDetached(words.front(), words).hasValue()) throw plainError(errors::OutOfMemory);
        return {};
    }
    runProgram(std::move(words));
    return {};
}

} // namespace mac::applescript::additions
