#include "platform/foundation/running/Beep.h"
#include "platform/foundation/objects/Listeners.h"
#include <memory>
#include <unistd.h>

namespace mac {

namespace {

Listeners<>& beepListeners() {
    static Listeners<>& all = *std::make_unique<Listeners<>>().release();
    return all;
}

void ringTerminal() {
    if (::isatty(STDERR_FILENO) == 0) return;
    [[maybe_unused]] ssize_t const count = ::write(STDERR_FILENO, "\a", 1);
}

std::function<void()>& sound() {
    static std::function<void()> function = ringTerminal;
    return function;
}

} // namespace

void NSBeep() {
    sound()();
    beepListeners().tell();
}

BeepListener::BeepListener(std::function<void()> listener) : m_token(beepListeners().add(std::move(listener))) {}

BeepListener::~BeepListener() { beepListeners().remove(m_token); }

void setBeepSound(std::function<void()> newSound) { sound() = newSound ? std::move(newSound) : ringTerminal; }

} // namespace mac
