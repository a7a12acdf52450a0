#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/runtime/ShellCommand.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/foundation/Encodings.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <unistd.h>

namespace mac::applescript::additions {

namespace {

constexpr std::u16string_view SilentFailure = u"The command exited with a non-zero status.";
constexpr std::u16string_view NoPassword =
    u"The system itself asks for a user name and password; a script cannot give them.";
constexpr std::int32_t PrivilegeViolation = -10004;
// What the asking program ends with when the user turns it down.
constexpr int Dismissed = 126;
// Written by the shell before anything else when it runs with an administrator's rights, so that a failure to get them
// is not taken for one of the command.
constexpr std::string_view Started = "\1privileges granted\1\n";

// Line ends become returns, and the last one goes.
std::u16string withAlteredLineEnds(std::u16string text) {
    std::ranges::replace(text, u'\n', u'\r');
    if (text.ends_with(u'\r')) text.pop_back();
    return text;
}

// The program that asks the user for an administrator's rights; empty where there is none.
std::string askingProgram() {
    for (std::string const& folder : listInEnvironment("PATH", "/usr/bin:/bin")) {
        std::string program = folder + "/pkexec";
        if (folder.starts_with('/') && ::access(program.c_str(), X_OK) == 0) return program;
    }
    return {};
}

struct CommandResult {
    int status{0};
    std::string output{};
    std::string complaints{};
};

CommandResult resultOf(std::vector<std::string> words, std::size_t most) {
    ShellCommand command(std::move(words));
    command.collect(most);
    int const status = command.status();
    return {.status = status, .output = command.output(), .complaints = command.complaints()};
}

CommandResult privilegedResultOf(std::string const& command, std::size_t most) {
    std::string const program = askingProgram();
    if (program.empty()) throw plainError(PrivilegeViolation);
    CommandResult result = resultOf(
        {program, "/bin/sh", "-c", R"(printf '\1privileges granted\1\n' >&2; exec /bin/sh -c "$1")", "sh", command},
        most);
    std::size_t const start = result.complaints.find(Started);
    if (start == std::string::npos)
        throw plainError(result.status == Dismissed ? errors::UserCanceled : PrivilegeViolation);
    result.complaints.erase(0, start + Started.size());
    return result;
}

} // namespace

std::u16string textOfBytes(std::string const& bytes) {
    std::optional<std::u16string> text = unitsFromUTF8(bytes);
    if (!text) text = unitsFromBytes(bytes, NSMacOSRomanStringEncoding);
    return text.value_or(std::u16string());
}

Value doShellScript(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    auto const isTrue = [&](Code code, bool standard) {
        Value const* const flag = arguments.find(code);
        return flag ? requireBoolean(*flag, context) : standard;
    };
    if (arguments.direct.isNothing()) throw missingParameter(u"direct", u"do shell script");
    std::u16string const source = requireText(arguments.direct, context);
    bool const givesPassword = arguments.find(codeOf("RAun")) || arguments.find(codeOf("RApw"));
    // Linux: it would have to pass through a command line or a terminal, where others can see it.
    if (givesPassword) throw ScriptError{.number = PrivilegeViolation, .message = std::u16string(NoPassword)};
    std::optional<std::string> const command = fileSystemBytesFromUnits(source);
    if (!command && !source.empty()) throw plainError(errors::Parameter);
    CommandResult const result = isTrue(codeOf("badm"), false)
                                     ? privilegedResultOf(command.value_or(std::string()), context.mostUnits)
                                     : resultOf({"/bin/sh", "-c", command.value_or(std::string())}, context.mostUnits);
    if (result.status != 0) {
        std::u16string message = withAlteredLineEnds(textOfBytes(result.complaints));
        if (message.empty()) message = SilentFailure;
        throw ScriptError{.number = result.status, .message = std::move(message)};
    }
    std::u16string text = textOfBytes(result.output);
    if (isTrue(codeOf("alen"), true)) text = withAlteredLineEnds(std::move(text));
    Value const* const type = arguments.find(codeOf("rtyp"));
    Value const output = Value::text(std::move(text));
    return type && type->is(ValueKind::Type) ? requireType(output, type->asCode(), context) : output;
}

} // namespace mac::applescript::additions
