#pragma once

#include "platform/system/Result.h"
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mac {

// The names of unfinished files and folders, which tell who made them: so that the leftovers of a process that was
// killed can be told from what another one is working on. Any thread.

// The process that made an item: ID in the namespace of process IDs of that number, and start (clock ticks since the
// system's start) in the namespace of clocks of that number, since the start of that ID, of the installed system of
// that ID. Numbers that the system does not tell are 0, and IDs empty.
struct TemporaryOwner {
    // A hash of the system's own ID, which is not to be published.
    std::string machine{};
    // 16 hexadecimal digits.
    std::string boot{};
    std::uint64_t pidNamespace{0};
    std::uint64_t timeNamespace{0};
    std::int32_t pid{0};
    std::uint64_t startTime{0};

    // This process.
    static TemporaryOwner current();

    bool operator==(TemporaryOwner const&) const = default;
};

enum class OwnerState {
    Runs,
    // It has ended, or this very system has been started anew since.
    HasEnded,
    // It may run on another computer, in a namespace of process IDs that is not ours, or cannot be looked at.
    Unknown,
};
// For an item on a volume that only this computer mounts, or perhaps others. The disk below may still be handed out to
// others by a server on this computer, or be one that this computer's host writes to.
enum class VolumeSharing { ThisComputerOnly, PerhapsOthers };
OwnerState stateOf(TemporaryOwner const& owner, VolumeSharing sharing);

inline constexpr std::string_view temporaryNamePrefix = ".framekeeper-";

// A new unguessable name of at most 140 bytes, for an item that goes if this process is killed. Fails if the system has
// no random numbers.
Result<std::string> temporaryName();
// For an item that is moved aside before it is removed. It goes with this process only if it still has the mark, which
// tells what it is to be.
Result<std::string> asideName(std::uint64_t mark);
// For an item that is exchanged with another one: whichever of the two has the name goes with this process.
Result<std::string> asideNameForEither(std::uint64_t oneMark, std::uint64_t otherMark);
// The mark that no item has: for an item that is moved aside to come back, which never goes with its process.
inline constexpr std::uint64_t MarkOfNoItem = 0;

struct ParsedTemporaryName {
    TemporaryOwner owner{};
    // The mark of the item that was moved aside under the name; nullopt for the name of an unfinished copy.
    std::optional<std::uint64_t> mark{};
    // Set in the name of two items that are exchanged. Both marks have 32 bits only then.
    std::optional<std::uint64_t> otherMark{};

    // Whether an item with this mark is one that goes with the process.
    bool accepts(std::uint64_t itemMark) const;
};
// nullopt for names of another form. A "._" before the name does not count.
std::optional<ParsedTemporaryName> parseTemporaryName(std::string_view name);

} // namespace mac
