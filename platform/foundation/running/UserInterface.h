#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// What a script or program may ask the person at the screen, whoever owns the screen. Text in UTF-16 code units.

namespace mac {

struct DialogRequest {
    enum class Icon { None, Note, Caution, Stop };

    std::u16string title{};
    std::u16string text{};
    std::u16string details{};
    Icon icon{Icon::None};
    // Titles from left to right.
    std::vector<std::u16string> buttons{};
    // The indexes of the buttons that Return and Escape press; nullopt: none.
    std::optional<std::size_t> defaultButton{};
    std::optional<std::size_t> cancelButton{};
    // The initial text of the field for an answer; nullopt: no field.
    std::optional<std::u16string> answer{};
    bool hidesAnswer{false};
    // The time after which the dialog closes by itself; 0: never.
    double seconds{0};
};

struct DialogOutcome {
    // The index of the button pressed; nullopt if the time was over, the program ended or the dialog was closed without
    // a choice.
    std::optional<std::size_t> button{};
    bool isTimeOver{false};
    std::u16string answer{};
};

struct ListRequest {
    std::u16string title{};
    std::u16string text{};
    std::vector<std::u16string> items{};
    std::vector<std::size_t> chosen{};
    std::u16string acceptButton{};
    std::u16string cancelButton{};
    bool allowsSeveral{false};
    bool allowsNone{false};
};

// What is to be chosen among files and folders; paths are bytes.
struct FileRequest {
    enum class Kind {
        File,
        Folder,
        // A name for a new file; the person is asked before one that is there is chosen.
        NewFile,
    };
    Kind kind{Kind::File};
    std::u16string title{};
    // The folder that is shown at first; empty: the one that was shown last.
    std::string folder{};
    // The name proposed for a new file.
    std::u16string name{};
    // Whether several files may be chosen; folders are chosen one at a time.
    bool allowsSeveral{false};
    bool showsHidden{false};
    // Whether a file may be chosen; empty: any.
    std::function<bool(std::string const& path)> accepts{};
};

// Red, green and blue, from 0 to 65535.
using ColorComponents = std::array<std::uint16_t, 3>;

// Implemented by the room that owns the screen. Dialogs hold the caller until they are answered. Main thread.
class UserInterface {
public:
    UserInterface() = default;
    virtual ~UserInterface() = default;
    UserInterface(UserInterface const&) = delete;
    UserInterface& operator=(UserInterface const&) = delete;

    virtual DialogOutcome runDialog(DialogRequest const& request) = 0;
    // The indexes of the items chosen; nullopt if the person cancels.
    virtual std::optional<std::vector<std::size_t>> chooseFromList(ListRequest const& request) = 0;
    // nullopt if the person cancels. `initial` is chosen at first.
    virtual std::optional<ColorComponents> chooseColor(ColorComponents const& initial) = 0;
    // Absolute paths; nullopt if the person cancels.
    virtual std::optional<std::vector<std::string>> chooseFiles(FileRequest const& request) = 0;
    virtual std::u16string clipboardText() = 0;
    virtual void setClipboardText(std::u16string const& text) = 0;
    // Shows a notification, which disappears by itself and takes no answer; lost if the desktop shows none.
    virtual void notify(std::u16string const& title, std::u16string const& text) = 0;
};

// The interface in use, not owned; nullptr for a program without a screen. Main thread.
UserInterface* userInterface();
// Called whenever an interface is needed and none is set, so that a display that comes later is found: connects this
// program to the display, if there is one, and sets the interface. For the Registration of the room that owns the
// screen.
void setUserInterfaceSource(void (*newSource)());
// The caller owns the interface, and sets null before destroying it.
void setUserInterface(UserInterface* newInterface);

} // namespace mac
