#include "platform/applescript/Additions.h"
#include "platform/applescript/Coercion.h"
#include "platform/foundation/Encodings.h"
#include "platform/foundation/FileDescriptor.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mac::applescript::additions {

namespace {

constexpr std::string_view ShellPath = "PATH=/usr/bin:/bin:/usr/sbin:/sbin";
constexpr std::u16string_view SilentFailure = u"The command exited with a non-zero status.";
constexpr std::int32_t PrivilegeViolation = -10004;
constexpr int LongestWait = 50;

// A command of the shell that runs, and what it says. Ends with it, or takes it along.
class ShellCommand {
public:
    explicit ShellCommand(std::string const& command) {
        Pipe output;
        Pipe complaints;
        posix_spawn_file_actions_t actions{};
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_adddup2(&actions, output.write, STDOUT_FILENO);
        ::posix_spawn_file_actions_adddup2(&actions, complaints.write, STDERR_FILENO);
        posix_spawnattr_t attributes{};
        ::posix_spawnattr_init(&attributes);
        // A group of its own, so that all of it can be stopped.
        ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
        std::array<std::string, 3> words{"sh", "-c", command};
        std::array<char*, 4> const argv{words[0].data(), words[1].data(), words[2].data(), nullptr};
        std::vector<char*> const environment = shellEnvironment();
        int const failure =
            ::posix_spawn(&m_process, "/bin/sh", &actions, &attributes, argv.data(), environment.data());
        ::posix_spawnattr_destroy(&attributes);
        ::posix_spawn_file_actions_destroy(&actions);
        ::close(output.write);
        ::close(complaints.write);
        m_channels[0].descriptor = output.read;
        m_channels[1].descriptor = complaints.read;
        if (failure == 0) return;
        m_process = -1;
        closeChannels();
        throw plainError(errors::OutOfMemory);
    }

    ~ShellCommand() {
        closeChannels();
        if (m_process <= 0) return;
        ::kill(-m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }

    ShellCommand(ShellCommand const&) = delete;
    ShellCommand& operator=(ShellCommand const&) = delete;

    // Until both ends are closed; throws when the script is to stop or says too much.
    void collect(Evaluator const& evaluator, std::size_t most) {
        while (m_channels[0].descriptor >= 0 || m_channels[1].descriptor >= 0) {
            evaluator.stopIfAsked();
            std::array<pollfd, 2> waiting{pollfd{.fd = m_channels[0].descriptor, .events = POLLIN, .revents = 0},
                                          pollfd{.fd = m_channels[1].descriptor, .events = POLLIN, .revents = 0}};
            if (::poll(waiting.data(), waiting.size(), LongestWait) < 0 && errno != EINTR) break;
            for (std::size_t index = 0; index < waiting.size(); ++index)
                if (waiting.at(index).revents != 0) readFrom(m_channels.at(index), most);
        }
    }

    int status() {
        int status = 0;
        while (::waitpid(m_process, &status, 0) < 0 && errno == EINTR) {}
        m_process = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    std::string const& output() const { return m_channels[0].said; }
    std::string const& complaints() const { return m_channels[1].said; }

private:
    struct Pipe {
        Pipe() {
            std::array<int, 2> ends{-1, -1};
            if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw plainError(errors::OutOfMemory);
            read = ends[0];
            write = ends[1];
        }
        int read{-1};
        int write{-1};
    };

    struct Channel {
        int descriptor{-1};
        std::string said{};
    };

    static std::vector<char*> shellEnvironment() {
        static std::string path(ShellPath);
        std::vector<char*> environment{path.data()};
        for (char** entry = environ; entry && *entry; ++entry)
            if (!std::string_view(*entry).starts_with("PATH=")) environment.push_back(*entry);
        environment.push_back(nullptr);
        return environment;
    }

    static void readFrom(Channel& channel, std::size_t most) {
        std::array<char, 65536> buffer{};
        ssize_t const count = ::read(channel.descriptor, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) return;
        if (count <= 0) {
            ::close(std::exchange(channel.descriptor, -1));
            return;
        }
        channel.said.append(buffer.data(), static_cast<std::size_t>(count));
        if (channel.said.size() > most) throw plainError(errors::ValueTooLarge);
    }

    void closeChannels() {
        for (Channel& channel : m_channels)
            if (channel.descriptor >= 0) ::close(std::exchange(channel.descriptor, -1));
    }

    pid_t m_process{-1};
    std::array<Channel, 2> m_channels{};
};

std::u16string decoded(std::string const& bytes) {
    std::optional<std::u16string> text = unitsFromUTF8(bytes);
    if (!text) text = unitsFromBytes(bytes, NSMacOSRomanStringEncoding);
    return text.value_or(std::u16string());
}

// Line ends become returns, and the last one goes.
std::u16string withAlteredLineEnds(std::u16string text) {
    std::ranges::replace(text, u'\n', u'\r');
    if (text.ends_with(u'\r')) text.pop_back();
    return text;
}

} // namespace

Value doShellScript(Evaluator& evaluator, CommandArguments const& arguments) {
    TextContext const& context = evaluator.context();
    auto const isTrue = [&](Code code, bool standard) {
        Value const* const flag = arguments.find(code);
        return flag ? requireBoolean(*flag, context) : standard;
    };
    if (arguments.direct.isNothing()) throw missingParameter(u"direct", u"do shell script");
    std::u16string const source = requireText(arguments.direct, context);
    // Linux: nothing here asks for a password yet.
    if (isTrue(codeOf("badm"), false)) throw plainError(PrivilegeViolation);
    std::optional<std::string> const command = fileSystemBytesFromUnits(source);
    if (!command && !source.empty()) throw plainError(errors::Parameter);
    ShellCommand shell(command.value_or(std::string()));
    shell.collect(evaluator, context.mostUnits);
    int const status = shell.status();
    if (status != 0) {
        std::u16string message = withAlteredLineEnds(decoded(shell.complaints()));
        if (message.empty()) message = SilentFailure;
        throw ScriptError{.number = status, .message = std::move(message)};
    }
    std::u16string text = decoded(shell.output());
    if (isTrue(codeOf("alen"), true)) text = withAlteredLineEnds(std::move(text));
    Value const* const type = arguments.find(codeOf("rtyp"));
    Value const output = Value::text(std::move(text));
    return type && type->is(ValueKind::Type) ? requireType(output, type->asCode(), context) : output;
}

} // namespace mac::applescript::additions
