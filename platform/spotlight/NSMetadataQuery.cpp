#include "platform/spotlight/NSMetadataQuery.h"
#include "platform/foundation/objects/Method.h"
#include "platform/spotlight/QueryBody.h"

namespace mac {

ClassDescription NSMetadataQuery::describeClass() {
    return {
        .name = "NSMetadataQuery",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSMetadataQuery>,
        .methods =
            {
                method<&NSMetadataQuery::init>("init"),
                method<&NSMetadataQuery::startQuery>("startQuery"),
                method<&NSMetadataQuery::stopQuery>("stopQuery"),
                {"deliver:",
                 [](id const& query, std::span<id const>) {
                     bodyOf(uncheckedCast<NSMetadataQuery>(query))->deliver();
                     return id();
                 }},
            },
        .properties =
            {
                property<&NSMetadataQuery::predicate, &NSMetadataQuery::setPredicate_>("predicate"),
                property<&NSMetadataQuery::searchScopes, &NSMetadataQuery::setSearchScopes_>("searchScopes"),
                property<&NSMetadataQuery::notificationBatchingInterval,
                         &NSMetadataQuery::setNotificationBatchingInterval_>("notificationBatchingInterval"),
                readOnlyProperty<&NSMetadataQuery::isStarted>("isStarted"),
                readOnlyProperty<&NSMetadataQuery::isGathering>("isGathering"),
                readOnlyProperty<&NSMetadataQuery::isStopped>("isStopped"),
                readOnlyProperty<&NSMetadataQuery::resultCount>("resultCount"),
                readOnlyProperty<&NSMetadataQuery::results>("results"),
                readOnlyProperty<&NSMetadataQuery::unreadableFolderCount>("unreadableFolderCount"),
                readOnlyProperty<&NSMetadataQuery::unreadableFolders>("unreadableFolders"),
            },
    };
}

NSMetadataQuery NSMetadataQuery::init() const { return *this; }

NSPredicate NSMetadataQuery::predicate() const { return *this == nil ? NSPredicate() : bodyOf(*this)->m_predicate; }

void NSMetadataQuery::setPredicate_(NSPredicate const& predicate) const {
    if (*this != nil) bodyOf(*this)->m_predicate = predicate;
}

NSArray NSMetadataQuery::searchScopes() const { return *this == nil ? NSArray() : bodyOf(*this)->m_searchScopes; }

void NSMetadataQuery::setSearchScopes_(NSArray const& scopes) const {
    if (*this != nil) bodyOf(*this)->m_searchScopes = uncheckedCast<NSArray>(scopes.copy());
}

NSTimeInterval NSMetadataQuery::notificationBatchingInterval() const {
    return *this == nil ? 0 : bodyOf(*this)->m_batchingInterval;
}

void NSMetadataQuery::setNotificationBatchingInterval_(NSTimeInterval interval) const {
    if (*this != nil) bodyOf(*this)->m_batchingInterval = interval;
}

bool NSMetadataQuery::endsWithGathering() const { return *this != nil && bodyOf(*this)->m_endsWithGathering; }

void NSMetadataQuery::setEndsWithGathering_(bool ends) const {
    if (*this != nil) bodyOf(*this)->m_endsWithGathering = ends;
}

bool NSMetadataQuery::startQuery() const { return *this != nil && bodyOf(*this)->start(); }

bool NSMetadataQuery::waitUntilRemembered(NSTimeInterval longest) const {
    return *this == nil || bodyOf(*this)->waitUntilRemembered(longest);
}

void NSMetadataQuery::stopQuery() const {
    if (*this != nil) bodyOf(*this)->stop();
}

bool NSMetadataQuery::isStarted() const { return *this != nil && bodyOf(*this)->m_phase != Body::Phase::Idle; }

bool NSMetadataQuery::isGathering() const { return *this != nil && bodyOf(*this)->m_phase == Body::Phase::Gathering; }

bool NSMetadataQuery::isStopped() const { return *this != nil && bodyOf(*this)->m_phase == Body::Phase::Stopped; }

void NSMetadataQuery::disableUpdates() const {
    if (*this != nil) ++bodyOf(*this)->m_disabledUpdates;
}

void NSMetadataQuery::enableUpdates() const {
    if (*this != nil) bodyOf(*this)->enableUpdates();
}

NSUInteger NSMetadataQuery::resultCount() const { return results().count(); }

NSMetadataItem NSMetadataQuery::resultAtIndex_(NSUInteger index) const {
    return as<NSMetadataItem>(results().objectAtIndex_(index));
}

NSUInteger NSMetadataQuery::indexOfResult_(NSMetadataItem const& result) const {
    return results().indexOfObject_(result);
}

NSArray NSMetadataQuery::results() const { return *this == nil ? NSArray() : bodyOf(*this)->m_results; }

NSUInteger NSMetadataQuery::unreadableFolderCount() const {
    return *this == nil ? 0 : bodyOf(*this)->m_unreadableFolderCount;
}

NSArray NSMetadataQuery::unreadableFolders() const {
    return *this == nil ? NSArray() : bodyOf(*this)->m_unreadableFolders;
}

} // namespace mac
