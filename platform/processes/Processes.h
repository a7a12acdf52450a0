#pragma once

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/objects/ServiceTypes.h"
#include <optional>

// The running processes, in the order of their start. Linux: those whose executable this user may see, as /proc tells.
// Main thread, but for what says otherwise. A null pointer is a paramErr; a serial number that names no running process
// a procNotFound.

namespace mac {

inline constexpr OSErr procNotFound = -600;
// The process has no windows that could come to the front.
inline constexpr OSErr appIsDaemon = -606;

// Names a process for as long as it runs, made of its process ID and the clock tick of its start: never answered for
// another process that gets the same ID. No number is given before that tick is over, when no other process can start
// with the ID in it; what gives the number of a process that started just now therefore blocks for up to 10 ms.
struct ProcessSerialNumber {
    std::uint32_t highLongOfPSN{0};
    std::uint32_t lowLongOfPSN{0};

    constexpr bool operator==(ProcessSerialNumber const&) const = default;
};

// {0, kNoProcess} stands before the first process, {0, kCurrentProcess} for the calling one.
inline constexpr std::uint32_t kNoProcess = 0;
inline constexpr std::uint32_t kCurrentProcess = 2;

// For ProcessInformationCopyDictionary; it answers all it knows whatever the mask.
inline constexpr std::uint32_t kProcessDictionaryIncludeAllInformationMask = 0xFFFFFFFF;

// Keys of its dictionary besides those of an information file.
inline constexpr char kIOBundlePathKey[] = "BundlePath";
inline constexpr char kCFBundleIdentifierKey[] = "CFBundleIdentifier";
inline constexpr char kCFBundleNameKey[] = "CFBundleName";
inline constexpr char kCFBundleExecutableKey[] = "CFBundleExecutable";

// Advances the number to the process that was started next. The walk is over the processes that ran when it began at
// {0, kNoProcess}, without those that are gone since. One that has ended and whose parent has not waited for it may
// still be among them; the other functions know nothing of it any more.
OSErr GetNextProcess(ProcessSerialNumber* psn);

// The process whose window has the user's input. Linux: the window manager of an X11 display tells; procNotFound where
// there is none, where the window belongs to a process on another computer, and for the windows of a Wayland session,
// which tells no program about another one.
OSErr GetFrontProcess(ProcessSerialNumber* psn);

// Asks for the topmost window of the process to come to the front and does not wait until it has. Linux: the same
// displays; the window manager may refuse unseen. appIsDaemon for a process without such windows.
OSErr SetFrontProcess(ProcessSerialNumber const* psn);

// The number under which the others know the calling process. Any thread.
OSErr GetCurrentProcess(ProcessSerialNumber* psn);

// The process ID for a serial number, and the serial number for a process ID. Any thread.
OSStatus GetProcessPID(ProcessSerialNumber const* psn, std::int32_t* pid);
OSStatus GetProcessForPID(std::int32_t pid, ProcessSerialNumber* psn);

// Whether both name one process, also when one does so as {0, kCurrentProcess}. Any thread.
OSErr SameProcess(ProcessSerialNumber const* first, ProcessSerialNumber const* second, bool* result);

// What is known of the process: "PSN" (the eight bytes of its number as one integer), "pid", "CFBundleExecutable" (the
// path of the program; of a script in a bundle that a common interpreter runs, the script's) and "CFBundleName"; when
// it runs from a bundle, also "BundlePath", and "CFBundleIdentifier", "FileType" and "FileCreator" as its information
// file has them. A program that was renamed while it runs, or a folder above it, is known by its new path, one that was
// deleted by its last; a script that its interpreter does not keep open is found again under a new name in its folder.
// All of it is read anew each time; of a bundle that is gone, or has made room for another one, it is what was read
// while the process ran from it, and no identifier where nobody did. Nil when no such process runs. Linux: the
// desktop's file browser, that is the default application for folders, is "com.apple.finder" in this user's session;
// which one that is, is looked up once a walk and once a second.
NSDictionary ProcessInformationCopyDictionary(ProcessSerialNumber const* psn, std::uint32_t mask);

// The first process, in the order of GetNextProcess, whose information has an equal value under the key; nullopt if
// none has. The function may refuse some by their IDs.
std::optional<ProcessSerialNumber> processWith(NSString const& key, id const& value,
                                               bool (*isMeant)(std::int32_t pid) = nullptr);

} // namespace mac
