#include "tests/faults/FaultPlan.h"
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <unistd.h>

namespace mac::faults {

namespace {

// Names nothing that needs construction: wrapped functions are called before any initialiser runs.
struct State {
    Plan plan;
    CallRecord* record;
    Call const* failing;
    std::uint32_t interruptions;
};
thread_local State* armed = nullptr;
thread_local State state{};

// Interruptions do not last for ever, and a call that is made again after each would.
constexpr std::uint32_t MostInterruptions = 16;

bool isAlwaysInterrupted(State& now) { return now.plan.error == EINTR && ++now.interruptions > MostInterruptions; }

Verdict fail(State& now) {
    errno = now.plan.error;
    return Verdict::Fails;
}

Verdict act(State& now, Call const& call) {
    switch (now.plan.action) {
    case Action::None:
        return Verdict::Passes;
    case Action::Fail:
        now.failing = &call;
        return fail(now);
    case Action::TransferLess:
        return Verdict::TransfersLess;
    case Action::Kill:
        ::kill(::getpid(), SIGKILL);
        for (;;)
            ::pause();
    case Action::Disturb:
        armed = nullptr;
        now.plan.disturb();
        armed = &now;
        return Verdict::Passes;
    }
    std::abort();
}

} // namespace

void arm(Plan const& plan, CallRecord& record) {
    record.count = 0;
    state = State{.plan = plan, .record = &record, .failing = nullptr, .interruptions = 0};
    armed = &state;
}

void disarm() { armed = nullptr; }

Verdict verdictOn(Call& call) {
    State* const now = armed;
    if (!now) return Verdict::Passes;
    std::uint32_t const number = now->record->count++;
    if (number < CallRecord::Most) now->record->names[number] = call.name;
    if (number == now->plan.at) return act(*now, call);
    bool const failsStill = now->failing == &call && now->plan.lasting == Lasting::ForGood;
    return failsStill && !isAlwaysInterrupted(*now) ? fail(*now) : Verdict::Passes;
}

void* nextOf(Call& call) {
    if (call.next) return call.next;
    call.next = ::dlsym(RTLD_NEXT, call.name);
    if (!call.next) std::abort();
    return call.next;
}

void tellPassed(Call const& call, std::array<long, 6> const& arguments) {
    State* const now = armed;
    if (!now || !now->plan.passed) return;
    int const error = errno;
    armed = nullptr;
    now->plan.passed(call.name, arguments);
    armed = now;
    errno = error;
}

bool refusesExclusiveRename() { return armed && armed->plan.volume == Volume::WithoutExclusiveRename; }

} // namespace mac::faults
