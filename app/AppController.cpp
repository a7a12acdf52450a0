#include "app/AppController.h"
#include "app/AppControllerBody.h"
#include "app/Outlets.h"
#include "app/ValueTransformers.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/objects/KeyValueObserving.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/running/Beep.h"
#include "platform/foundation/running/Log.h"
#include <utility>
#include <vector>

namespace framekeeper {

namespace {

// The set of a source, by its key in the table.
template <std::size_t row>
constexpr Property entriesProperty() {
    return {MembershipSources[row].entriesKey,
            [](id const& object) -> id { return entriesOf(uncheckedCast<AppController>(object), row); },
            [](id const& object, id const& value) {
                setEntries(uncheckedCast<AppController>(object), row, as<NSSet>(value));
            }};
}

template <std::size_t... rows>
void addEntriesProperties(std::vector<Property>& properties, std::index_sequence<rows...>) {
    properties.insert(properties.end(), {entriesProperty<rows>()...});
}

WindowOutlets& mutableWindowOutlets() {
    static WindowOutlets outlets;
    return outlets;
}

} // namespace

WindowOutlets const& windowOutlets() { return mutableWindowOutlets(); }

void setWindowOutlets(WindowOutlets outlets) { mutableWindowOutlets() = std::move(outlets); }

ClassDescription AppController::describeClass() {
    using Self = AppController;
    ClassDescription description{
        .name = "AppController",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<AppController>,
        .initialize = &AppController::initialize,
        .methods =
            {
                method<&Self::init>("init"),
                method<&Self::awakeFromNib>("awakeFromNib"),
                method<&Self::applicationShouldTerminateAfterLastWindowClosed_>(
                    "applicationShouldTerminateAfterLastWindowClosed:"),
                method<&Self::allAutolaunchItems>("allAutolaunchItems"),
                method<&Self::setAllAutolaunchItems_>("setAllAutolaunchItems:"),
                method<&Self::allToolbarItems>("allToolbarItems"),
                method<&Self::setAllToolbarItems_>("setAllToolbarItems:"),
                method<&Self::isRunningPaths>("isRunningPaths"),
                method<&Self::setIsRunningPaths_>("setIsRunningPaths:"),
                method<&Self::isAutolaunchedPaths>("isAutolaunchedPaths"),
                method<&Self::setIsAutolaunchedPaths_>("setIsAutolaunchedPaths:"),
                method<&Self::isInToolbarPaths>("isInToolbarPaths"),
                method<&Self::setIsInToolbarPaths_>("setIsInToolbarPaths:"),
                method<&Self::isOnHarddiskPaths>("isOnHarddiskPaths"),
                method<&Self::setIsOnHarddiskPaths_>("setIsOnHarddiskPaths:"),
                method<&Self::paths>("paths"),
                method<&Self::setPaths_>("setPaths:"),
                method<&Self::query>("query"),
                method<&Self::setQuery_>("setQuery:"),
                method<&Self::pathsArrayController>("pathsArrayController"),
                method<&Self::pathsTableView>("pathsTableView"),
                method<&Self::window>("window"),
                method<&Self::pathObjects_addPath_psn_autolaunchedItem_toolbarItem_>(
                    "pathObjects:addPath:psn:autolaunchedItem:toolbarItem:"),
                method<&Self::pathObjects_addPath_>("pathObjects:addPath:"),
                method<&Self::reSync>("reSync"),
                method<&Self::syncIsRunningPaths>("syncIsRunningPaths"),
                method<&Self::syncIsAutolaunched>("syncIsAutolaunched"),
                method<&Self::syncIsInToolbar>("syncIsInToolbar"),
                method<&Self::readAllToolbarItems>("readAllToolbarItems"),
                method<&Self::writeAllToolbarItems_>("writeAllToolbarItems:"),
                method<&Self::unToolbarAction_>("unToolbarAction:"),
                method<&Self::quitFinderAction_>("quitFinderAction:"),
                method<&Self::syncQuery>("syncQuery"),
                method<&Self::syncIsOnHarddisk>("syncIsOnHarddisk"),
                method<&Self::queryDidStart_>("queryDidStart:"),
                method<&Self::queryGatheringProgress_>("queryGatheringProgress:"),
                method<&Self::queryDidFinish_>("queryDidFinish:"),
                method<&Self::queryDidUpdate_>("queryDidUpdate:"),
                method<&Self::scanAction_>("scanAction:"),
                method<&Self::stopAction_>("stopAction:"),
                method<&Self::isRunningWithQuitting_>("isRunningWithQuitting:"),
                method<&Self::readAllAutolaunchItems>("readAllAutolaunchItems"),
                method<&Self::writeAllAutolaunchItems_>("writeAllAutolaunchItems:"),
                method<&Self::autoLaunchedApplicationsAnyMirrorFrameEntry_>(
                    "autoLaunchedApplicationsAnyMirrorFrameEntry:"),
                method<&Self::hasAutoLaunchedApplicationsEntry_>("hasAutoLaunchedApplicationsEntry:"),
                method<&Self::addToAutoLaunchAction_>("addToAutoLaunchAction:"),
                method<&Self::unAutoLaunchAction_>("unAutoLaunchAction:"),
                method<&Self::showAccountsAction_>("showAccountsAction:"),
                method<&Self::logOutAction_>("logOutAction:"),
                method<&Self::quitAction_>("quitAction:"),
                method<&Self::openActivityMonitorAction_>("openActivityMonitorAction:"),
                method<&Self::revealAction_>("revealAction:"),
                method<&Self::trashAction_>("trashAction:"),
                method<&Self::deleteAction_>("deleteAction:"),
                method<&Self::swapIconAction_>("swapIconAction:"),
                method<&Self::undoAction_>("undoAction:"),
                method<&Self::putBackAction_>("putBackAction:"),
            },
        .classMethods = {classMethod<&AppController::initialize>("initialize")},
        .properties =
            {
                property<&Self::allAutolaunchItems, &Self::setAllAutolaunchItems_>("allAutolaunchItems"),
                property<&Self::allToolbarItems, &Self::setAllToolbarItems_>("allToolbarItems"),
                property<&Self::isOnHarddiskPaths, &Self::setIsOnHarddiskPaths_>("isOnHarddiskPaths"),
                property<&Self::paths, &Self::setPaths_>("paths"),
                property<&Self::query, &Self::setQuery_>("query"),
                readOnlyProperty<&Self::canUndo>("canUndo"),
                readOnlyProperty<&Self::panes>("panes"),
                readOnlyProperty<&Self::details>("details"),
                readOnlyProperty<&Self::scanChanges>("scanChanges"),
                readOnlyProperty<&Self::logOutObstacle>("logOutObstacle"),
                readOnlyProperty<&Self::loginItemsProblem>("loginItemsProblem"),
                readOnlyProperty<&Self::placesProblem>("placesProblem"),
                readOnlyProperty<&Self::notice>("notice"),
                readOnlyProperty<&Self::noticeOffersUndo>("noticeOffersUndo"),
                outlet<&Self::pathsArrayController, &Body::_pathsArrayController>("pathsArrayController"),
            },
    };
    for (Property const& property : windowOutlets().properties)
        description.properties.push_back(property);
    addEntriesProperties(description.properties, std::make_index_sequence<MembershipSources.size()>());
    return description;
}

void AppController::initialize() {
    NSValueTransformer::setValueTransformer_forName_(adopt<BOOLToStringTransformer>(), "BOOLToStringTransformer");
    NSValueTransformer::setValueTransformer_forName_(adopt<BOOLToColorTransformer>(), "BOOLToColorTransformer");
    NSValueTransformer::setValueTransformer_forName_(adopt<InTrashTransformer>(), "InTrashTransformer");
}

NSArray inventoryOrder() {
    return NSArray::arrayWithObjects_({
        NSSortDescriptor::sortDescriptorWithKey_ascending_selector_("version", NO, "compare:"),
        NSSortDescriptor::sortDescriptorWithKey_ascending_selector_("displayPath", YES, "caseInsensitiveCompare:"),
    });
}

AppController AppController::init() const {
    if (*this == nil) return nil;
    NSMetadataQuery const query = NSMetadataQuery::alloc().init();
    bodyOf(*this)->_query = query;
    query.setPredicate_(NSPredicate::predicateWithFormat_("%K = %@ AND %K = %@", kMDItemKind, "Application",
                                                          kMDItemFSName, CompanionFileName));
    query.setSearchScopes_(NSArray::arrayWithObject_(NSMetadataQueryLocalComputerScope));
    query.setNotificationBatchingInterval_(0.5);

    NSNotificationCenter const center = NSNotificationCenter::defaultCenter();
    center.addObserver_selector_name_object_(*this, "queryDidStart:", NSMetadataQueryDidStartGatheringNotification,
                                             query);
    center.addObserver_selector_name_object_(
        *this, "queryGatheringProgress:", NSMetadataQueryGatheringProgressNotification, query);
    center.addObserver_selector_name_object_(*this, "queryDidFinish:", NSMetadataQueryDidFinishGatheringNotification,
                                             query);
    center.addObserver_selector_name_object_(*this, "queryDidUpdate:", NSMetadataQueryDidUpdateNotification, query);
    return *this;
}

void AppController::awakeFromNib() const {
    if (*this == nil) return;
    windowOutlets().sortTable(*this, inventoryOrder());
    syncMembershipSources(*this);
    startQuery();
}

void AppController::startQuery() const {
    if (query().startQuery()) return;
    NSBeep();
    NSLog("ERROR: Could not start Spotlight query.");
}

Panes AppController::panes() const {
    if (*this == nil) return nil;
    Panes& panes = bodyOf(*this)->_panes;
    if (panes == nil) panes = Panes::of(*this);
    return panes;
}

CopyDetails AppController::details() const {
    if (*this == nil) return nil;
    CopyDetails& details = bodyOf(*this)->_details;
    if (details == nil) details = CopyDetails::of(*this);
    return details;
}

ScanChanges AppController::scanChanges() const {
    if (*this == nil) return nil;
    ScanChanges& changes = bodyOf(*this)->_scanChanges;
    if (changes == nil) changes = ScanChanges::of(*this);
    return changes;
}

bool AppController::applicationShouldTerminateAfterLastWindowClosed_(id const&) const { return *this != nil; }

} // namespace framekeeper
