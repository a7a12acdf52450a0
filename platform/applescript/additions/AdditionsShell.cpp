#include "platform/applescript/additions/AdditionParameters.h"
#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/ShellCommand.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/XDGFolders.h"
#include <algorithm>
#include <cerrno>
#include <sys/mman.h>
#include <unistd.h>

namespace mac::applescript::additions {

namespace {

constexpr std::u16string_view SilentFailure = u"The command exited with a non-zero status.";
constexpr std::u16string_view NoPassword =
    u"The system itself asks for a user name and password; a script cannot give them.";
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

// The program that asks the user for an administrator's rights; empty if none is installed.
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

// The kernel takes only so many bytes in one word of a command line, a zero byte at its end counted.
constexpr std::size_t MostBytesOfWord = std::size_t{128} * 1024 - 1;

// A shell command as the words that run it. A command longer than a word lies in an anonymous file that the shell
// reads, so that its standard input stays the command's own.
class ShellWords {
public:
    explicit ShellWords(std::string const& command) : m_command(command) {
        if (command.size() <= MostBytesOfWord) return;
        m_file = FileDescriptor(::memfd_create("command", MFD_CLOEXEC));
        if (!m_file.isOpen()) throw plainError(errors::OutOfMemory);
        // The shell has the file open under a number of its own; the command shall not find the first one.
        std::string const text = "exec " + std::to_string(ShellCommand::HandedDescriptor) + "<&-; " + command;
        for (std::string_view left = text; !left.empty();) {
            ssize_t const count = ::write(m_file.number(), left.data(), left.size());
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) throw plainError(errors::OutOfMemory);
            left.remove_prefix(static_cast<std::size_t>(count));
        }
    }

    // What the shell is given behind -c.
    std::string forChild() const {
        return m_file.isOpen() ? ". /dev/fd/" + std::to_string(ShellCommand::HandedDescriptor) : m_command;
    }
    FileDescriptor const& file() const { return m_file; }

private:
    std::string const& m_command;
    FileDescriptor m_file{};
};

CommandResult resultOf(ShellCommand& command, std::size_t most) {
    command.collect(most);
    int const status = command.status();
    return {.status = status, .output = command.output(), .complaints = command.complaints()};
}

CommandResult resultOf(std::string const& command, std::size_t most) {
    ShellWords const words(command);
    ShellCommand shell({"/bin/sh", "-c", words.forChild()}, words.file());
    return resultOf(shell, most);
}

// Joins the words behind it to a command, which finds none of the names used for that.
constexpr char JoiningCommand[] = R"(printf '\1privileges granted\1\n' >&2
[ $# -gt 1 ] || exec /bin/sh -c "$1"
command=
for piece do command=$command$piece; done
set --
eval "unset command piece
$command")";

// The words by which a program that grants an administrator's rights runs the command. All of its text is in them: a
// file could be changed by other programs of the user while the password is asked for.
std::vector<std::string> privilegedWords(std::string const& program, std::string_view command) {
    std::vector<std::string> words{program, "/bin/sh", "-c", JoiningCommand, "/bin/sh"};
    do {
        words.emplace_back(command.substr(0, MostBytesOfWord));
        command.remove_prefix(words.back().size());
    } while (!command.empty());
    return words;
}

CommandResult privilegedResultOf(std::string const& command, std::size_t most) {
    // No question is asked if this process has the rights already.
    if (::geteuid() == 0) return resultOf(command, most);
    std::string const program = askingProgram();
    if (program.empty()) throw plainError(errors::PrivilegeViolation);
    ShellCommand asking(privilegedWords(program, command));
    CommandResult result = resultOf(asking, most);
    std::size_t const start = result.complaints.find(Started);
    if (start == std::string::npos)
        throw plainError(result.status == Dismissed ? errors::UserCanceled : errors::PrivilegeViolation);
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
    bool const givesPassword = arguments.find(parameters::UserName) || arguments.find(parameters::Password);
    // Linux: it would have to pass through a command line or a terminal, where others can see it.
    if (givesPassword) throw ScriptError{.number = errors::PrivilegeViolation, .message = std::u16string(NoPassword)};
    std::optional<std::string> const command = fileSystemBytesFromUnits(source);
    if (!command && !source.empty()) throw plainError(errors::Parameter);
    CommandResult const result = isTrue(parameters::AdministratorPrivileges, false)
                                     ? privilegedResultOf(command.value_or(std::string()), context.mostUnits)
                                     : resultOf(command.value_or(std::string()), context.mostUnits);
    if (result.status != 0) {
        std::u16string message = withAlteredLineEnds(textOfBytes(result.complaints));
        if (message.empty()) message = SilentFailure;
        throw ScriptError{.number = result.status, .message = std::move(message)};
    }
    std::u16string text = textOfBytes(result.output);
    if (isTrue(parameters::AlteringLineEndings, true)) text = withAlteredLineEnds(std::move(text));
    Value const* const type = arguments.find(codes::RequestedTypeParameter);
    Value const output = Value::text(std::move(text));
    return type && type->is(ValueKind::Type) ? requireType(output, type->asCode(), context) : output;
}

} // namespace mac::applescript::additions
