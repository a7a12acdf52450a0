#pragma once

#include <QDBusConnection>
#include <QString>
#include <QVariantMap>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace mac {

// What a launcher gave the program at its start, by which the window manager lets the window come to the front and ends
// the sign of the start. Each is empty if there was none.
struct LaunchTokens {
    // XDG_ACTIVATION_TOKEN, of Wayland.
    QString activation{};
    // DESKTOP_STARTUP_ID, of X11.
    QString startup{};

    // Read before the toolkit connects to the display, which removes them from the environment.
    static LaunchTokens fromEnvironment();
};

// Brings the visible windows to the front, minimized ones too. With tokens a window manager that keeps the keyboard
// where it is lets them have it; a window that keeps the others from the keyboard comes last. False if there is none.
// Main thread.
bool raiseWindows(LaunchTokens const& tokens = {});

// The one instance of the program in a session: the owner of a well-known name on the session's bus, which offers the
// interface org.freedesktop.Application at the path that belongs to the name. Main thread.
class ApplicationInstance {
public:
    enum class Standing {
        // This instance owns the name, and answers later starts until it ends.
        IsFirst,
        // Another instance has it and has come to the front.
        OtherWasRaised,
        // This instance owns no name: there is no bus, or the other instance did not answer.
        IsUnnamed,
    };
    // How long the bus and the other instance are waited for in all.
    static constexpr std::chrono::milliseconds UsualPatience{2'000};

    // Performs the action of that name from the desktop entry.
    using Performing = std::function<void(QString const& action)>;

    explicit ApplicationInstance(Performing perform = {});
    ~ApplicationInstance();
    ApplicationInstance(ApplicationInstance const&) = delete;
    ApplicationInstance& operator=(ApplicationInstance const&) = delete;

    // Without a function actions only raise the windows.
    void setPerforming(Performing perform);
    // Takes the name, "example.company.Program", or else asks the instance that has it to come to the front. What later
    // starts ask is answered by the event loop. Called once.
    Standing begin(QString const& name, LaunchTokens const& tokens, std::chrono::milliseconds patience = UsualPatience);

private:
    class Service;
    std::unique_ptr<Service> m_service;
    std::optional<QDBusConnection> m_connection;
};

// Whether the environment variable FRAMEKEEPER_OWN_INSTANCE asks for an instance of its own: set and not empty.
bool wantsOwnInstance();

// Has this program answer the events that every program with windows gets from others: opened, opened once more, which
// brings its windows to the front, and asked to quit. It quits as if its last window were closed, after its reply has
// left. Main thread; once the application is there.
void installApplicationEvents();

} // namespace mac
