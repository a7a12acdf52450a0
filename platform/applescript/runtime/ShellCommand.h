#pragma once

#include "platform/system/FileDescriptor.h"
#include <array>
#include <string>
#include <vector>

namespace mac::applescript {

// A program that runs for a script, and what it says. It reads nothing, and has the environment of shell scripts.
// Ends with the object, as far as this user may end it.
class ShellCommand {
public:
    // The descriptor under which the command finds the file that is handed to it.
    static constexpr int HandedDescriptor = 3;

    // The first word is the program's path; `handed`, if it is open, is handed to the program. Throws -108 if no
    // process can be had, -2708 if the words and the environment are more than the system hands to a program.
    explicit ShellCommand(std::vector<std::string> words, FileDescriptor const& handed = {});
    ~ShellCommand();
    ShellCommand(ShellCommand const&) = delete;
    ShellCommand& operator=(ShellCommand const&) = delete;

    // Until both of its outputs are closed; throws when the script is to stop or it says more than `most` bytes.
    void collect(std::size_t most);
    // Waits for its end; of one that a signal ended 128 and the signal's number. Throws when the script is to stop.
    int status();

    std::string const& output() const { return m_channels[0].said; }
    std::string const& complaints() const { return m_channels[1].said; }

private:
    struct Channel {
        FileDescriptor read{};
        std::string said{};
    };

    static void readFrom(Channel& channel, std::size_t most);

    std::int32_t m_process{-1};
    std::array<Channel, 2> m_channels{};
};

} // namespace mac::applescript
