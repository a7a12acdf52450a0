#include "platform/files/volumes/Volumes.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/BytePath.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/FolderContents.h"
#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

// The labels that volumes got when they were formatted, or later.

namespace mac {

namespace {

int hexadecimalDigit(char character) {
    if (character >= '0' && character <= '9') return character - '0';
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    return -1;
}

// The label that a link's name stands for: "My\\x20Disk" is "My Disk".
std::string unescaped(std::string_view name) {
    constexpr std::size_t lengthOfEscape = 4;
    constexpr int base = 16;
    std::string label;
    for (std::size_t place = 0; place < name.size(); ++place) {
        std::string_view const escape = name.substr(place, lengthOfEscape);
        bool const mayBeEscape = escape.size() == lengthOfEscape && escape.starts_with("\\x");
        int const high = mayBeEscape ? hexadecimalDigit(escape[2]) : -1;
        int const low = mayBeEscape ? hexadecimalDigit(escape[3]) : -1;
        bool const isEscape = high >= 0 && low >= 0;
        label += isEscape ? static_cast<char>(high * base + low) : name[place];
        if (isEscape) place += lengthOfEscape - 1;
    }
    return label;
}

// The label that the file system itself tells; empty if it has no label or is of a kind that tells none.
std::string labelToldBy(FileDescriptor const& item) {
    std::array<char, FSLABEL_MAX> label{};
    if (::ioctl(item.number(), FS_IOC_GETFSLABEL, label.data()) != 0) return {};
    return {label.data(), ::strnlen(label.data(), label.size())};
}

std::string labelOfStartupVolume() {
    FileDescriptor const root(::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!root.isOpen()) return {};
    std::string label = labelToldBy(root);
    struct stat status {};
    if (!label.empty() || ::fstat(root.number(), &status) != 0) return label;
    return labelOfDevice(status.st_dev).value_or("");
}

} // namespace

std::optional<std::string> labelOfDevice(std::uint64_t device, std::string const& linksFolder) {
    for (std::string const& name : namesInFolder(linksFolder, LinkAtEnd::IsFollowed).valueOr({})) {
        struct stat status {};
        if (::stat(BytePath(linksFolder).joined(name).c_str(), &status) != 0) continue;
        bool const isDevice = S_ISBLK(status.st_mode) || S_ISCHR(status.st_mode);
        std::string label = isDevice && status.st_rdev == device ? unescaped(name) : std::string();
        if (!label.empty()) return label;
    }
    return std::nullopt;
}

std::u16string startupVolumeName() {
    std::u16string name = unitsFromFileSystemBytes(labelOfStartupVolume());
    // No component of a path holds a slash; a colon is shown as one.
    std::ranges::replace(name, u'/', u':');
    return name.empty() ? std::u16string(UnlabeledStartupVolumeName) : name;
}

} // namespace mac
