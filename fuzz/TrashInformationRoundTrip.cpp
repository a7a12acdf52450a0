#include "fuzz/Trials.h"
#include "platform/files/trash/TrashInformation.h"

namespace mac::fuzz {

namespace {

std::string complaintAboutNames(std::string_view name) {
    constexpr std::size_t longest = 243;
    TrashNames const names(name, "14-05-22", longest);
    for (unsigned const number : {0U, 1U, TrashNames::MostNames}) {
        if (names.name(number).size() > longest) return "a name is too long";
        if (names.name(number).empty()) return "a name is empty";
    }
    if (name.size() <= longest && names.name(0) != name) return "a name is changed without need";
    return "";
}

} // namespace

std::string complaintAboutTrashInformation(std::span<std::byte const> bytes) {
    std::string_view const text(reinterpret_cast<char const*>(bytes.data()), bytes.size());
    std::vector<DirectorySize> const sizes = DirectorySize::read(text);
    if (DirectorySize::read(DirectorySize::text(sizes)) != sizes) return "the sizes change when they are written";
    std::optional<TrashInformation> const information = TrashInformation::read(text);
    if (!information) return "";
    if (TrashInformation::read(information->text()) != information) return "it changes when it is written";
    if (information->path.find('\0') != std::string::npos) return "the path has a NUL";
    secondsOfLocalTimeText(information->date);
    return complaintAboutNames(information->path.substr(information->path.rfind('/') + 1));
}

} // namespace mac::fuzz
