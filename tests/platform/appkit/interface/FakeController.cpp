#include "tests/platform/appkit/interface/FakeController.h"
#include "platform/appkit/workspace/NSColor.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/objects/NSValueTransformer.h"
#include <utility>

namespace mac::test {

bool nextInitAnswersNil = false;

namespace {

class YesOrNo : public Handle<YesOrNo, NSValueTransformer> {
public:
    using Handle::Handle;
    class Body : public NSValueTransformer::Body {
    public:
        id transformedValue(id const& value) const override {
            return as<NSNumber>(value).boolValue() ? NSString("Yes") : NSString("No");
        }
    };
    static ClassDescription describeClass() { return {.name = "YesOrNo", .superclass = classOf<NSValueTransformer>()}; }
};

class BlackOrGray : public Handle<BlackOrGray, NSValueTransformer> {
public:
    using Handle::Handle;
    class Body : public NSValueTransformer::Body {
    public:
        id transformedValue(id const& value) const override {
            return as<NSNumber>(value).boolValue() ? NSColor::blackColor() : NSColor::darkGrayColor();
        }
    };
    static ClassDescription describeClass() {
        return {.name = "BlackOrGray", .superclass = classOf<NSValueTransformer>()};
    }
};

} // namespace

ClassDescription FakeQuery::describeClass() {
    return {
        .name = "FakeQuery",
        .superclass = classOf<NSObject>(),
        .properties =
            {
                property<&FakeQuery::isGathering, &FakeQuery::setIsGathering_>("isGathering"),
                property<&FakeQuery::unreadableFolderCount, &FakeQuery::setUnreadableFolderCount_>(
                    "unreadableFolderCount"),
                readOnlyProperty<&FakeQuery::unreadableFolders>("unreadableFolders"),
            },
    };
}

bool FakeQuery::isGathering() const { return bodyOf(*this)->m_isGathering; }

void FakeQuery::setIsGathering_(BOOL gathering) const {
    KeyChange const change(*this, "isGathering");
    bodyOf(*this)->m_isGathering = static_cast<bool>(gathering);
}

NSUInteger FakeQuery::unreadableFolderCount() const { return bodyOf(*this)->m_unreadableFolderCount; }

void FakeQuery::setUnreadableFolderCount_(NSUInteger count) const {
    KeyChange const change(*this, "unreadableFolderCount");
    bodyOf(*this)->m_unreadableFolderCount = count;
}

ClassDescription FakeController::describeClass() {
    using Self = FakeController;
    return {
        .name = "AppController",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<FakeController>,
        .initialize = &FakeController::initialize,
        .methods =
            {
                method<&Self::init>("init"),
                method<&Self::awakeFromNib>("awakeFromNib"),
                method<&Self::applicationShouldTerminateAfterLastWindowClosed_>(
                    "applicationShouldTerminateAfterLastWindowClosed:"),
                method<&Self::scanAction_>("scanAction:"),
                method<&Self::stopAction_>("stopAction:"),
                method<&Self::trashAction_>("trashAction:"),
                method<&Self::quitAction_>("quitAction:"),
                method<&Self::revealAction_>("revealAction:"),
                method<&Self::undoAction_>("undoAction:"),
            },
        .properties =
            {
                property<&Self::paths, &Self::setPaths_>("paths"),
                readOnlyProperty<&Self::query>("query"),
                property<&Self::pathsArrayController, &Self::setPathsArrayController_>("pathsArrayController"),
                property<&Self::pathsTableView, &Self::setPathsTableView_>("pathsTableView"),
                property<&Self::window, &Self::setWindow_>("window"),
                readOnlyProperty<&Self::notice>("notice"),
                readOnlyProperty<&Self::noticeOffersUndo>("noticeOffersUndo"),
                readOnlyProperty<&Self::canUndo>("canUndo"),
                readOnlyProperty<&Self::pane>("panes"),
                readOnlyProperty<&Self::pane>("details"),
                readOnlyProperty<&Self::pane>("scanChanges"),
            },
    };
}

void FakeController::initialize() {
    NSValueTransformer::setValueTransformer_forName_(adopt<YesOrNo>(), "BOOLToStringTransformer");
    NSValueTransformer::setValueTransformer_forName_(adopt<BlackOrGray>(), "BOOLToColorTransformer");
}

FakeController FakeController::init() const {
    return std::exchange(nextInitAnswersNil, false) ? FakeController() : *this;
}

void FakeController::awakeFromNib() const {
    messages().emplace_back("awakeFromNib");
    pathsTableView().setSortDescriptors_(NSArray::arrayWithObjects_({
        NSSortDescriptor::sortDescriptorWithKey_ascending_selector_("version", NO, "compare:"),
        NSSortDescriptor::sortDescriptorWithKey_ascending_selector_("displayPath", YES, "caseInsensitiveCompare:"),
    }));
}

bool FakeController::applicationShouldTerminateAfterLastWindowClosed_(id const&) const {
    messages().emplace_back("applicationShouldTerminateAfterLastWindowClosed:");
    return true;
}

NSSet FakeController::paths() const { return bodyOf(*this)->m_paths; }

void FakeController::setPaths_(NSSet const& paths) const {
    KeyChange const change(*this, "paths");
    bodyOf(*this)->m_paths = paths;
}

FakeQuery FakeController::query() const { return bodyOf(*this)->m_query; }

NSArrayController FakeController::pathsArrayController() const { return bodyOf(*this)->m_pathsArrayController; }

void FakeController::setPathsArrayController_(NSArrayController const& arrayController) const {
    bodyOf(*this)->m_pathsArrayController = arrayController;
}

NSTableView FakeController::pathsTableView() const { return bodyOf(*this)->m_pathsTableView; }

void FakeController::setPathsTableView_(NSTableView const& tableView) const {
    bodyOf(*this)->m_pathsTableView = tableView;
}

NSWindow FakeController::window() const { return bodyOf(*this)->m_window; }

void FakeController::setWindow_(NSWindow const& window) const { bodyOf(*this)->m_window = window; }

void FakeController::scanAction_(id const&) const { messages().emplace_back("scanAction:"); }

void FakeController::stopAction_(id const&) const { messages().emplace_back("stopAction:"); }

void FakeController::trashAction_(id const&) const {
    messages().emplace_back("trashAction:");
    NSArray::array().objectAtIndex_(0);
}

void FakeController::quitAction_(id const&) const {
    messages().emplace_back("quitAction:");
    if (bodyOf(*this)->m_whileQuitting) bodyOf(*this)->m_whileQuitting();
}

void FakeController::revealAction_(id const&) const { messages().emplace_back("revealAction:"); }

void FakeController::undoAction_(id const&) const { messages().emplace_back("undoAction:"); }

NSString FakeController::notice() const { return bodyOf(*this)->m_notice; }

bool FakeController::noticeOffersUndo() const { return bodyOf(*this)->m_canUndo; }

bool FakeController::canUndo() const { return bodyOf(*this)->m_canUndo; }

void FakeController::tell(NSString const& notice, bool canUndo) const {
    KeyChange const undoing(*this, "canUndo");
    KeyChange const change(*this, "notice");
    bodyOf(*this)->m_canUndo = canUndo;
    bodyOf(*this)->m_notice = notice;
}

void FakeController::setWhileQuitting(std::function<void()> function) const {
    bodyOf(*this)->m_whileQuitting = std::move(function);
}

std::vector<std::string>& FakeController::messages() const { return bodyOf(*this)->m_messages; }

NSMutableDictionary makeRecord(NSString const& path, NSString const& version, NSString const& versionString) {
    NSMutableDictionary const record = NSMutableDictionary::dictionary();
    for (char const* const key : {"path", "displayPath"})
        record.setValue_forKey_(path, NSString::stringWithUTF8String_(key));
    for (char const* const key : {"exists", "isRunning", "isAutolaunched", "isInToolbar"})
        record.setValue_forKey_(NSNumber::numberWithBool_(BOOL(std::string(key) == "exists")),
                                NSString::stringWithUTF8String_(key));
    record.setValue_forKey_(version, "version");
    record.setValue_forKey_(versionString, "versionString");
    return record;
}

NSSet makeRecords(std::initializer_list<char const*> paths) {
    NSMutableSet const records = NSMutableSet::set();
    for (char const* const path : paths)
        records.addObject_(makeRecord(NSString::stringWithUTF8String_(path)));
    return records;
}

} // namespace mac::test
