#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

// What happens to the system calls of an operation under test. The shared library with these functions has functions of
// the names of the C library's system-call wrappers, too. Programs that link it call those; each asks the plan, then
// passes the call on. A plan acts on the thread that armed it; all else runs as ever.

namespace mac::faults {

// One wrapped function of the C library.
struct Call {
    char const* name;
    // Where the next library in order has it; looked up on first use.
    void* next{nullptr};
};

// What a wrapped function does with its call.
enum class Verdict { Passes, Fails, TransfersLess };

enum class Action : std::uint8_t {
    // Every call passes.
    None,
    // The call fails with the plan's error, without being made.
    Fail,
    // The call reads or writes at most half of the bytes; other calls pass.
    TransferLess,
    // The process is killed before the call.
    Kill,
    // The plan's function is called before the call.
    Disturb,
};

enum class Lasting : std::uint8_t {
    Once,
    // All later calls of the same function fail, too.
    ForGood,
};

// How the system behaves throughout, beside the one fault.
enum class Volume : std::uint8_t {
    Ordinary,
    // The file system cannot rename exclusively: renameat2 with flags fails with EINVAL, as on some FUSE systems.
    WithoutExclusiveRename,
};

struct Plan {
    Action action{Action::None};
    Lasting lasting{Lasting::Once};
    Volume volume{Volume::Ordinary};
    // The number of the call that the action is for, from 0.
    std::uint32_t at{0};
    int error{0};
    // For Disturb.
    void (*disturb)(){nullptr};
    // Called after each call that succeeded, with its name, for recorders; not counted itself.
    void (*passed)(char const* name, std::array<long, 6> const& arguments){nullptr};
};

// The calls of an armed thread, in their order.
struct CallRecord {
    static constexpr std::size_t Most = 4096;
    std::uint32_t count{0};
    // Names of the first calls.
    std::array<char const*, Most> names{};
};

// Begins to count this thread's calls into the record, which outlives the plan, and to act on them.
void arm(Plan const& plan, CallRecord& record);
void disarm();

// For the wrapped functions.
Verdict verdictOn(Call& call);
void* nextOf(Call& call);
void tellPassed(Call const& call, std::array<long, 6> const& arguments);
bool refusesExclusiveRename();

} // namespace mac::faults
