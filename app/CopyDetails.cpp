#include "app/CopyDetails.h"
#include "app/Panes.h"
#include "platform/appkit/arrangement/KeyPathObserver.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/Weak.h"
#include "platform/foundation/running/BackgroundWork.h"
#include "platform/foundation/running/Beep.h"
#include "platform/system/FolderContents.h"
#include "scripting/ProcessesAndFinder.h"
#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

namespace framekeeper {

class CopyDetails::Body : public ObjectBody {
public:
    explicit Body(AppController const& followed)
        : controller(followed), selection(followed, "pathsArrayController.selection", [this] { follow(); }),
          shown(followed.panes(), "showsDetails", [this] { follow(); }),
          inventory(followed, "paths", [this] { forgetComparison(); }),
          changes(followed, "canUndo", [this] { readAnew(); }),
          loginItems(followed, "loginItemsProblem", [this] { takeProblems(); }),
          places(followed, "placesProblem", [this] { takeProblems(); }) {}

    void follow();
    void tell();
    // Reads what the disk tells of the selected copy; until that has come, what is shown stays.
    void readDisk();
    void readAnew();
    // Takes over why the lists could not be read.
    void takeProblems();
    void compare();
    void compared(std::string const& other, ContentsLikeness likeness);
    void forgetComparison();
    void stopComparing();
    void reveal(NSString const& path) const;
    // The other copies of the inventory that are there, by path.
    std::vector<std::string> otherPaths() const;

    Weak<AppController> controller;
    DetailFacts facts;
    NSDictionary values = detailValues({});
    // Null before the first.
    std::unique_ptr<BackgroundWork> reading;
    std::unique_ptr<BackgroundWork> comparing;
    KeyPathObserver selection;
    KeyPathObserver shown;
    KeyPathObserver inventory;
    // A swapped icon leaves the inventory as it is, and each of the two swaps changes the steps that can be undone.
    KeyPathObserver changes;
    KeyPathObserver loginItems;
    KeyPathObserver places;
};

namespace {

std::string bytesOfRecord(NSDictionary const& record) {
    NSString const path = as<NSString>(record.objectForKey_("path"));
    return path == nil ? std::string() : path.fileSystemRepresentation().value_or("");
}

bool isOnDisk(NSDictionary const& record) { return as<NSNumber>(record.objectForKey_("exists")).boolValue(); }

} // namespace

void CopyDetails::Body::tell() {
    KeyChange const change(uncheckedCast<CopyDetails>(id::retain(this)), "values");
    values = detailValues(facts);
}

void CopyDetails::Body::follow() {
    AppController const followed = controller.load();
    NSDictionary const record = followed.panes().showsDetails()
                                    ? as<NSDictionary>(followed.valueForKeyPath_("pathsArrayController.selection"))
                                    : NSDictionary();
    bool const isUnchanged = record == nil ? facts.record == nil : isSame(record, facts.record);
    if (isUnchanged) return;
    bool const wasThere = facts.record != nil && isOnDisk(facts.record);
    bool const isThere = record != nil && isOnDisk(record) && !bytesOfRecord(record).empty();
    // The inventory makes its records anew with each change; the disk is not read again for that.
    bool const isSameCopy = wasThere && isThere && bytesOfRecord(record) == bytesOfRecord(facts.record);
    comparing.reset();
    facts.record = record;
    facts.session = sessionFactsOf(record);
    facts.comparison = {};
    if (isSameCopy) return tell();
    reading.reset();
    facts.disk.reset();
    facts.size.reset();
    if (isThere) readDisk();
    if (!isThere) {
        facts.disk = DiskFacts{};
        facts.size = SystemError{};
    }
    tell();
}

void CopyDetails::Body::readDisk() {
    BackgroundWork::Work work = [this, path = bytesOfRecord(facts.record)](std::stop_token const& stop,
                                                                           BackgroundWork::Tell const& told) {
        told([this, disk = diskFactsOf(path)] {
            facts.disk = disk;
            tell();
        });
        told([this, size = sizeOfTree(path, stop)] {
            facts.size = size;
            tell();
        });
    };
    // The work is stopped before this goes.
    reading = std::make_unique<BackgroundWork>(std::move(work), [this] {
        if (facts.disk && facts.size) return;
        if (!facts.disk) facts.disk = DiskFacts{};
        if (!facts.size) facts.size = SystemError{};
        tell();
    });
}

void CopyDetails::Body::readAnew() {
    forgetComparison();
    if (facts.record != nil && isOnDisk(facts.record)) readDisk();
}

void CopyDetails::Body::forgetComparison() {
    if (facts.comparison.stage == Comparison::Stage::NotAsked) return;
    comparing.reset();
    facts.comparison = {};
    tell();
}

std::vector<std::string> CopyDetails::Body::otherPaths() const {
    std::vector<std::string> paths;
    for (id const& element : controller.load().paths().allObjects()) {
        NSDictionary const record = as<NSDictionary>(element);
        if (isOnDisk(record)) paths.push_back(bytesOfRecord(record));
    }
    std::string const own = bytesOfRecord(facts.record);
    std::erase_if(paths, [&](std::string const& path) { return path.empty() || path == own; });
    std::ranges::sort(paths);
    return paths;
}

void CopyDetails::Body::takeProblems() {
    AppController const followed = controller.load();
    facts.loginItemsProblem = followed.loginItemsProblem();
    facts.placesProblem = followed.placesProblem();
    tell();
}

void CopyDetails::Body::compare() {
    if (facts.record == nil || !isOnDisk(facts.record)) return;
    std::vector<std::string> others = otherPaths();
    facts.comparison = {.stage = Comparison::Stage::UnderWay, .others = static_cast<NSUInteger>(others.size())};
    tell();
    std::string const own = bytesOfRecord(facts.record);
    BackgroundWork::Work work = [this, own, others = std::move(others)](std::stop_token const& stop,
                                                                        BackgroundWork::Tell const& told) {
        for (std::string const& other : others) {
            ContentsLikeness const likeness = compareContents(own, other, stop);
            if (stop.stop_requested()) return;
            told([this, other, likeness] { compared(other, likeness); });
        }
        told([this] {
            facts.comparison.stage = Comparison::Stage::Done;
            tell();
        });
    };
    comparing = std::make_unique<BackgroundWork>(std::move(work), [this] {
        if (facts.comparison.stage != Comparison::Stage::UnderWay) return;
        facts.comparison.stage = Comparison::Stage::Stopped;
        tell();
    });
}

void CopyDetails::Body::compared(std::string const& other, ContentsLikeness likeness) {
    ++facts.comparison.compared;
    if (likeness == ContentsLikeness::Unreadable) ++facts.comparison.unreadable;
    // The inventory may list one item under two paths, and that is no other copy.
    if (likeness == ContentsLikeness::Equal)
        facts.comparison.equal.push_back(NSString::stringWithFileSystemRepresentation_(other));
    tell();
}

void CopyDetails::Body::stopComparing() {
    if (facts.comparison.stage != Comparison::Stage::UnderWay) return;
    comparing.reset();
    facts.comparison.stage = Comparison::Stage::Stopped;
    tell();
}

void CopyDetails::Body::reveal(NSString const& path) const {
    if (path == nil || !KRAPathRevealInFinder(path)) NSBeep();
}

ClassDescription CopyDetails::describeClass() {
    return {
        .name = "CopyDetails",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                method<&CopyDetails::compare_>("compare:"),
                method<&CopyDetails::stopComparing_>("stopComparing:"),
                method<&CopyDetails::revealVolume_>("revealVolume:"),
                method<&CopyDetails::revealProcess_>("revealProcess:"),
                method<&CopyDetails::revealLoginItem_>("revealLoginItem:"),
                method<&CopyDetails::revealPlace_>("revealPlace:"),
            },
        .properties = {readOnlyProperty<&CopyDetails::values>("values")},
    };
}

CopyDetails CopyDetails::of(AppController const& controller) {
    if (controller == nil) return nil;
    CopyDetails const details = adopt<CopyDetails>(controller);
    bodyOf(details)->follow();
    bodyOf(details)->takeProblems();
    return details;
}

NSDictionary CopyDetails::values() const { return *this == nil ? NSDictionary() : bodyOf(*this)->values; }

void CopyDetails::compare_(id const&) const {
    if (*this != nil) bodyOf(*this)->compare();
}

void CopyDetails::stopComparing_(id const&) const {
    if (*this != nil) bodyOf(*this)->stopComparing();
}

void CopyDetails::revealVolume_(id const&) const {
    if (*this == nil) return;
    std::optional<DiskFacts> const& disk = bodyOf(*this)->facts.disk;
    bodyOf(*this)->reveal(disk ? disk->volumePath : NSString());
}

void CopyDetails::revealProcess_(id const&) const {
    if (*this != nil) bodyOf(*this)->reveal(bodyOf(*this)->facts.session.program);
}

void CopyDetails::revealLoginItem_(id const&) const {
    if (*this != nil) bodyOf(*this)->reveal(bodyOf(*this)->facts.session.loginItemFile);
}

void CopyDetails::revealPlace_(id const&) const {
    if (*this != nil) bodyOf(*this)->reveal(bodyOf(*this)->facts.session.placeFile);
}

} // namespace framekeeper
