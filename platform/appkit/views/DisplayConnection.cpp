#include "platform/appkit/views/DisplayConnection.h"
#include "platform/desktop/session/X11Display.h"
#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <mutex>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace mac {

namespace {

std::string environment(char const* name) {
    char const* const value = std::getenv(name);
    return value ? value : "";
}

// Which display is meant, in words.
std::string displayInWords() {
    if (std::string const platform = environment("QT_QPA_PLATFORM"); !platform.empty())
        return "the display (QT_QPA_PLATFORM is " + platform + ")";
    std::string const wayland = environment("WAYLAND_DISPLAY");
    return "the display " + (wayland.empty() ? environment("DISPLAY") : wayland);
}

void sayNoWindow(std::string const& reason) { std::fputs(("Cannot open a window: " + reason + "\n").c_str(), stderr); }

[[noreturn]] void endWithoutDisplay(std::string const& reason) {
    sayNoWindow(reason);
    std::_Exit(1);
}

// The toolkit reports a display that cannot be opened as a fatal message and would dump core after it.
void catchFatalMessage(QtMsgType type, QMessageLogContext const&, QString const& message) {
    if (type == QtFatalMsg) endWithoutDisplay(displayInWords() + " cannot be used.");
    if (type == QtCriticalMsg) std::fputs((message.toStdString() + "\n").c_str(), stderr);
}

// A display that takes the connection and then keeps silent would block the program without end.
class DisplayWatch {
public:
    explicit DisplayWatch(std::chrono::milliseconds limit)
        : m_watch([this, limit] {
              std::unique_lock lock(m_mutex);
              if (!m_ended.wait_for(lock, limit, [this] { return m_isOver; }))
                  endWithoutDisplay(displayInWords() + " does not answer.");
          }) {}
    ~DisplayWatch() {
        {
            std::lock_guard const lock(m_mutex);
            m_isOver = true;
        }
        m_ended.notify_one();
        m_watch.join();
    }
    DisplayWatch(DisplayWatch const&) = delete;
    DisplayWatch& operator=(DisplayWatch const&) = delete;

private:
    std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_isOver{false};
    std::thread m_watch;
};

// Whether a server listens at the path of a local socket.
bool takesConnections(std::string const& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return false;
    std::ranges::copy(path, std::begin(address.sun_path));
    int const socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    bool const isTaken =
        socket >= 0 && ::connect(socket, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0;
    if (socket >= 0) ::close(socket);
    return isTaken;
}

bool asksForPlatform(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        std::string_view const argument = argv[i];
        if (argument == "-platform" || argument == "--platform") return true;
    }
    return !environment("QT_QPA_PLATFORM").empty();
}

} // namespace

std::unique_ptr<QApplication> connectToDisplay(int& argc, char** argv, std::chrono::milliseconds patience) {
    if (QCoreApplication::instance()) {
        sayNoWindow("the program's event loop was made without a display.");
        return nullptr;
    }
    bool const hasDisplay = !environment("DISPLAY").empty() || !environment("WAYLAND_DISPLAY").empty();
    if (!hasDisplay && !asksForPlatform(argc, argv)) {
        sayNoWindow("there is no display, neither DISPLAY nor WAYLAND_DISPLAY is set.");
        return nullptr;
    }
    QtMessageHandler const before = qInstallMessageHandler(&catchFatalMessage);
    std::unique_ptr<QApplication> application;
    {
        DisplayWatch const watch(patience);
        application = std::make_unique<QApplication>(argc, argv);
    }
    qInstallMessageHandler(before);
    return application;
}

bool isDisplayThere() {
    if (std::string const wayland = environment("WAYLAND_DISPLAY"); !wayland.empty()) {
        bool const isPath = wayland.starts_with('/');
        return takesConnections(isPath ? wayland : environment("XDG_RUNTIME_DIR") + "/" + wayland);
    }
    // A display that takes the connection and keeps silent would hold the toolkit, which then ends the process.
    return X11Display::open() != nullptr;
}

} // namespace mac
