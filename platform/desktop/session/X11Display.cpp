#include "platform/desktop/session/X11Display.h"
#include "platform/desktop/session/Patience.h"
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <mutex>
#include <poll.h>
#include <span>
#include <string_view>
#include <thread>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

namespace mac {

namespace {

template <class T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

// The functions of libxcb, found by name.
struct Library {
    decltype(&::xcb_connect) connect{nullptr};
    decltype(&::xcb_disconnect) disconnect{nullptr};
    decltype(&::xcb_connection_has_error) hasError{nullptr};
    decltype(&::xcb_get_file_descriptor) descriptor{nullptr};
    decltype(&::xcb_get_setup) setup{nullptr};
    decltype(&::xcb_setup_roots_iterator) roots{nullptr};
    decltype(&::xcb_screen_next) nextScreen{nullptr};
    decltype(&::xcb_intern_atom) internAtom{nullptr};
    decltype(&::xcb_get_property) getProperty{nullptr};
    decltype(&::xcb_get_property_value) propertyValue{nullptr};
    decltype(&::xcb_get_property_value_length) propertyLength{nullptr};
    decltype(&::xcb_send_event_checked) sendEvent{nullptr};
    decltype(&::xcb_get_input_focus) getInputFocus{nullptr};
    decltype(&::xcb_poll_for_reply) pollForReply{nullptr};
    decltype(&::xcb_flush) flush{nullptr};
    bool isComplete{true};

    Library() {
        void* const library = ::dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL);
        if (!library) {
            isComplete = false;
            return;
        }
        auto const find = [&](auto& function, char const* name) {
            function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(::dlsym(library, name));
            isComplete = isComplete && function;
        };
        find(connect, "xcb_connect");
        find(disconnect, "xcb_disconnect");
        find(hasError, "xcb_connection_has_error");
        find(descriptor, "xcb_get_file_descriptor");
        find(setup, "xcb_get_setup");
        find(roots, "xcb_setup_roots_iterator");
        find(nextScreen, "xcb_screen_next");
        find(internAtom, "xcb_intern_atom");
        find(getProperty, "xcb_get_property");
        find(propertyValue, "xcb_get_property_value");
        find(propertyLength, "xcb_get_property_value_length");
        find(sendEvent, "xcb_send_event_checked");
        find(getInputFocus, "xcb_get_input_focus");
        find(pollForReply, "xcb_poll_for_reply");
        find(flush, "xcb_flush");
    }

    // Never unloaded.
    static Library const& shared() {
        static Library const library;
        return library;
    }
};

} // namespace

class X11Display::Connection {
public:
    explicit Connection(char const* display) : m_connection(m_library.connect(display, &m_screen)) {}
    ~Connection() { m_library.disconnect(m_connection); }
    Connection(Connection const&) = delete;
    Connection& operator=(Connection const&) = delete;

    bool isGood() const { return m_library.hasError(m_connection) == 0; }

    xcb_window_t root() const {
        xcb_screen_iterator_t screens = m_library.roots(m_library.setup(m_connection));
        for (int skipped = 0; skipped < m_screen && screens.rem > 1; ++skipped)
            m_library.nextScreen(&screens);
        return screens.rem > 0 ? screens.data->root : xcb_window_t{XCB_WINDOW_NONE};
    }

    // XCB_ATOM_NONE for a name that no client has used yet.
    xcb_atom_t atom(std::string_view name) const {
        constexpr std::uint8_t onlyIfExists = 1;
        auto const cookie =
            m_library.internAtom(m_connection, onlyIfExists, static_cast<std::uint16_t>(name.size()), name.data());
        Reply<xcb_intern_atom_reply_t> const reply = wait<xcb_intern_atom_reply_t>(cookie.sequence);
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    std::string property(xcb_window_t window, char const* name, std::uint8_t width) const {
        constexpr std::uint32_t mostWords = std::uint32_t{1} << 18;
        xcb_atom_t const key = atom(name);
        if (key == XCB_ATOM_NONE) return {};
        auto const cookie =
            m_library.getProperty(m_connection, 0, window, key, XCB_GET_PROPERTY_TYPE_ANY, 0, mostWords);
        Reply<xcb_get_property_reply_t> const reply = wait<xcb_get_property_reply_t>(cookie.sequence);
        if (!reply || reply->format != width) return {};
        auto const length = static_cast<std::size_t>(std::max(m_library.propertyLength(reply.get()), 0));
        return {static_cast<char const*>(m_library.propertyValue(reply.get())), length};
    }

    // The root window's clients that get the event are those that have asked for events of the mask.
    bool sendToRoot(xcb_client_message_event_t const& event, std::uint32_t mask) const {
        m_library.sendEvent(m_connection, 0, root(), mask, reinterpret_cast<char const*>(&event));
        // Requests are handled in order: the reply to a later one says that the message was taken.
        return wait<xcb_get_input_focus_reply_t>(m_library.getInputFocus(m_connection).sequence) != nullptr;
    }

private:
    // null if the request fails, or the display does not answer within the thread's patience. One that did not is not
    // waited for again.
    template <class T>
    Reply<T> wait(unsigned sequence) const {
        using SteadyClock = std::chrono::steady_clock;
        m_library.flush(m_connection);
        SteadyClock::time_point const end =
            SteadyClock::now() + (m_isSilent ? std::chrono::milliseconds() : Patience::left());
        for (;;) {
            void* reply = nullptr;
            xcb_generic_error_t* error = nullptr;
            if (m_library.pollForReply(m_connection, sequence, &reply, &error) != 0) {
                std::free(error);
                return {static_cast<T*>(reply), &std::free};
            }
            auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(end - SteadyClock::now()).count();
            pollfd waiting{.fd = m_library.descriptor(m_connection), .events = POLLIN, .revents = 0};
            m_isSilent = left <= 0;
            if (m_isSilent || !isGood() || (::poll(&waiting, 1, static_cast<int>(left)) < 0 && errno != EINTR))
                return {nullptr, &std::free};
        }
    }

    Library const& m_library{Library::shared()};
    mutable bool m_isSilent{false};
    int m_screen{0};
    xcb_connection_t* m_connection;
};

namespace {

// Connecting knows no time-out, so it is done by a thread that can be left behind. It ends when the display answers.
class Connecting {
public:
    static std::unique_ptr<X11Display::Connection> connect(std::string const& display) {
        static std::mutex lock;
        static std::shared_ptr<Connecting> hanging;
        std::lock_guard const guard(lock);
        if (hanging && !hanging->isOver()) return nullptr;
        hanging.reset();
        auto const connecting = std::make_shared<Connecting>();
        std::thread([connecting, display] {
            connecting->finish(std::make_unique<X11Display::Connection>(display.c_str()));
        }).detach();
        std::unique_ptr<X11Display::Connection> connection = connecting->wait();
        if (!connection) hanging = connecting;
        return connection;
    }

private:
    bool isOver() {
        std::lock_guard const guard(m_lock);
        return m_isOver;
    }
    void finish(std::unique_ptr<X11Display::Connection> connection) {
        {
            std::lock_guard const guard(m_lock);
            m_isOver = true;
            // This thread closes a connection that comes too late.
            if (!m_isAbandoned) m_connection = std::move(connection);
        }
        m_changed.notify_one();
    }
    std::unique_ptr<X11Display::Connection> wait() {
        std::unique_lock lock(m_lock);
        m_isAbandoned = !m_changed.wait_for(lock, Patience::left(), [this] { return m_isOver; });
        return std::move(m_connection);
    }

    std::mutex m_lock;
    std::condition_variable m_changed;
    bool m_isOver{false};
    bool m_isAbandoned{false};
    std::unique_ptr<X11Display::Connection> m_connection;
};

} // namespace

X11Display::X11Display(std::unique_ptr<Connection> connection) : m_connection(std::move(connection)) {}

X11Display::~X11Display() = default;

std::unique_ptr<X11Display> X11Display::open() {
    char const* const name = std::getenv("DISPLAY");
    if (!name || !*name || !Library::shared().isComplete) return nullptr;
    std::unique_ptr<Connection> connection = Connecting::connect(name);
    if (!connection || !connection->isGood()) return nullptr;
    return std::make_unique<X11Display>(std::move(connection));
}

std::uint32_t X11Display::rootWindow() const { return m_connection->root(); }

std::vector<std::uint32_t> X11Display::numbers(std::uint32_t window, char const* property) const {
    std::string const bytes = m_connection->property(window, property, 32);
    std::vector<std::uint32_t> numbers(bytes.size() / sizeof(std::uint32_t));
    if (!numbers.empty()) std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(std::uint32_t));
    return numbers;
}

std::string X11Display::text(std::uint32_t window, char const* property) const {
    std::string text = m_connection->property(window, property, 8);
    // Some programs write the terminating NUL with the text.
    while (text.ends_with('\0'))
        text.pop_back();
    return text;
}

bool X11Display::tellWindowManager(std::uint32_t window, char const* message,
                                   std::vector<std::uint32_t> const& values) const {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = m_connection->atom(message);
    std::ranges::copy(std::span(values).first(std::min<std::size_t>(values.size(), 5)), event.data.data32);
    constexpr std::uint32_t managers = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    return event.type != XCB_ATOM_NONE && m_connection->sendToRoot(event, managers);
}

// The text goes in pieces as long as a client message, with the zero at its end; the first of them has another type.
bool X11Display::endStartup(std::uint32_t window, std::string const& id) const {
    constexpr std::size_t longestId = 1024;
    if (id.size() > longestId) return false;
    std::string text = "remove: ID=\"";
    for (char const character : id) {
        if (character == '"' || character == '\\') text += '\\';
        text += character;
    }
    text += '"';
    text += '\0';
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 8;
    event.window = window;
    event.type = m_connection->atom("_NET_STARTUP_INFO_BEGIN");
    xcb_atom_t const next = m_connection->atom("_NET_STARTUP_INFO");
    bool isTaken = event.type != XCB_ATOM_NONE && next != XCB_ATOM_NONE;
    for (std::size_t place = 0; isTaken && place < text.size(); place += sizeof event.data.data8) {
        std::string_view const piece = std::string_view(text).substr(place, sizeof event.data.data8);
        std::ranges::fill(event.data.data8, std::uint8_t{0});
        std::ranges::copy(piece, event.data.data8);
        isTaken = m_connection->sendToRoot(event, XCB_EVENT_MASK_PROPERTY_CHANGE);
        event.type = next;
    }
    return isTaken;
}

} // namespace mac
