#include "platform/system/LogFile.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <vector>

namespace mac {

namespace {

constexpr int MostOpenings = 10;
constexpr std::chrono::milliseconds BetweenOpenings{1000};
// Less the umask, as fopen creates files.
constexpr mode_t NewLogMode = 0666;

// While it lives, a pipe whose reader has ended gives this thread an error (EPIPE) and not the signal that ends the
// program. A signal that was pending before stays so.
class BlockedPipeSignal {
public:
    BlockedPipeSignal() {
        ::sigemptyset(&m_signal);
        ::sigaddset(&m_signal, SIGPIPE);
        sigset_t pending{};
        ::sigpending(&pending);
        m_wasPending = ::sigismember(&pending, SIGPIPE) == 1;
        ::pthread_sigmask(SIG_BLOCK, &m_signal, &m_former);
    }
    ~BlockedPipeSignal() {
        timespec const noTime{};
        while (!m_wasPending && ::sigtimedwait(&m_signal, nullptr, &noTime) < 0 && errno == EINTR) {}
        ::pthread_sigmask(SIG_SETMASK, &m_former, nullptr);
    }
    BlockedPipeSignal(BlockedPipeSignal const&) = delete;
    BlockedPipeSignal& operator=(BlockedPipeSignal const&) = delete;

private:
    sigset_t m_signal{};
    sigset_t m_former{};
    bool m_wasPending{false};
};

Result<OwnedStream> openOnce(std::string const& path, OldLogLines oldLines) {
    BytePath const file(path);
    std::string_view const folder = file.parent().empty() ? "." : file.parent();
    Result<FileDescriptor> const parent = openPath(folder, O_PATH | O_DIRECTORY);
    if (!parent.hasValue()) return parent.problem();
    int const emptying = oldLines == OldLogLines::AreDropped ? O_TRUNC : 0;
    FileDescriptor descriptor(::openat(parent.value().number(), std::string(file.leaf()).c_str(),
                                       O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | emptying,
                                       NewLogMode));
    if (!descriptor.isOpen()) return lastSystemError("open", path);
    OwnedStream stream(::fdopen(descriptor.number(), "a"));
    if (!stream) return lastSystemError("fdopen", path);
    descriptor.release();
    return stream;
}

} // namespace

Result<OwnedStream> openLogFile(std::string const& path, OldLogLines oldLines,
                                std::function<void(std::chrono::milliseconds)> const& pause) {
    for (int opening = 1;; ++opening) {
        Result<OwnedStream> stream = openOnce(path, oldLines);
        if (stream.hasValue() || opening == MostOpenings) return stream;
        pause(BetweenOpenings);
    }
}

Result<void> appendAndClose(OwnedStream stream, std::string const& bytes) {
    BlockedPipeSignal const blocked;
    // A buffer that is larger than the bytes is written once, when the stream is closed. It outlives the stream.
    std::vector<char> buffer(bytes.size() + 1);
    OwnedStream open = std::move(stream);
    std::setvbuf(open.get(), buffer.data(), _IOFBF, buffer.size());
    if (std::fwrite(bytes.data(), 1, bytes.size(), open.get()) != bytes.size()) return lastSystemError("fwrite");
    if (std::fclose(open.release()) != 0) return lastSystemError("write");
    return {};
}

} // namespace mac
