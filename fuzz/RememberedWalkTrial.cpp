#include "fuzz/Trials.h"
#include "platform/system/walker/RememberedFolders.h"
#include "platform/system/walker/WalkMemory.h"
#include <algorithm>
#include <cstring>

namespace mac::fuzz {

namespace {

struct Counts {
    std::size_t folders = 0;
    bool isInOrder = true;
};

// Every place below that of a folder, depth first and without recursion, as the depth is the input's.
void countBelow(RememberedFolders const& folders, RememberedFolders::Place top, Counts& counts) {
    std::vector<RememberedFolders::Place> places{top};
    while (!places.empty()) {
        RememberedFolders::Place const place = places.back();
        places.pop_back();
        ++counts.folders;
        RememberedFolders::Cursor cursor = folders.children(place);
        RememberedNames const names(folders, cursor);
        while (std::optional<RememberedFolders::Child> const child = folders.next(cursor)) {
            bool const isName = !child->name.empty() && child->name.find('/') == std::string_view::npos;
            counts.isInOrder = counts.isInOrder && isName && child->name != "..";
            if (child->kind != RememberedFolders::Kind::Folder) continue;
            counts.isInOrder = counts.isInOrder && child->place > place;
            counts.isInOrder = counts.isInOrder && names.place(child->name) != RememberedFolders::None;
            places.push_back(child->place);
        }
    }
}

std::string complaintAboutFolders(RememberedFolders const& folders) {
    Counts counts;
    for (RememberedFolders::Place const volume : folders.volumes())
        countBelow(folders, volume, counts);
    if (!counts.isInOrder) return "a child that no folder can have";
    return counts.folders == folders.folderCount() ? "" : "folders that cannot be reached";
}

} // namespace

std::string complaintAboutRememberedWalk(std::span<std::byte const> bytes) {
    std::vector<std::byte> const whole(bytes.begin(), bytes.end());
    if (std::optional<RememberedFolders> const folders = RememberedFolders::parse(whole)) {
        std::string const complaint = complaintAboutFolders(*folders);
        if (!complaint.empty()) return complaint;
    }
    std::optional<RememberedWalk> const walk = walkOfCheckedBytes(whole);
    if (!walk) return walkOfBytes(whole) ? "a file that is read only with its checksum" : "";
    std::string const complaint = complaintAboutFolders(*walk->folders);
    if (!complaint.empty()) return complaint;
    std::optional<RememberedWalk> const again = walkOfBytes(bytesOfWalk(*walk));
    if (!again) return "a walk that is written and cannot be read";
    bool const isSame = again->question == walk->question && again->packages == walk->packages &&
                        again->start == walk->start &&
                        std::ranges::equal(again->folders->bytes(), walk->folders->bytes());
    return isSame ? "" : "a walk that changes when it is written";
}

} // namespace mac::fuzz
