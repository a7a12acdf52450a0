#pragma once

#include <functional>

namespace mac {

// The system's alert sound. Without a graphical program it is the terminal's bell where standard error is one.
void NSBeep();

// A place to listen to beeps, from the listener's birth to its death; main thread.
class BeepListener {
public:
    explicit BeepListener(std::function<void()> listener);
    ~BeepListener();
    BeepListener(BeepListener const&) = delete;
    BeepListener& operator=(BeepListener const&) = delete;

private:
    int m_token;
};

// How a beep sounds: set by the room that owns the screen, at the start of the program.
void setBeepSound(std::function<void()> newSound);

} // namespace mac
