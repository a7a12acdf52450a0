#include "platform/Registration.h"
#include "platform/appkit/arrangement/ArrayControllerBody.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"

namespace mac {

namespace {

template <auto get>
constexpr Property derived(std::string_view key) {
    return {key,
            [](id const& object) { return detail::toObject(get(*bodyOf(uncheckedCast<NSArrayController>(object)))); }};
}

using Body = NSArrayController::Body;

constexpr auto Count = [](Body const& body) { return body.arrangedObjects().count(); };
constexpr auto ContentCount = [](Body const& body) { return body.contentCount(); };
constexpr auto SelectionCount = [](Body const& body) { return static_cast<NSUInteger>(body.selectedRows().size()); };
constexpr auto Selection = [](Body const& body) {
    return body.selectedRows().size() == 1 ? body.selectedObjects().objectAtIndex_(0) : id();
};
constexpr auto IsEmpty = [](Body const& body) { return body.isEmpty(); };
constexpr auto IsFilteredToNothing = [](Body const& body) {
    return body.contentCount() > 0 && body.arrangedObjects().count() == 0;
};
constexpr auto HasSelection = [](Body const& body) { return !body.selectedRows().empty(); };
constexpr auto HasSingleSelection = [](Body const& body) { return body.selectedRows().size() == 1; };

void requireContentBinding(NSString const& binding) {
    if (binding.isEqualToString_("contentSet") || binding.isEqualToString_("contentArray")) return;
    throw NSInvalidArgumentException("An array controller has no binding \"" + binding.UTF8String() +
                                     "\", only contentArray and contentSet");
}

} // namespace

void registerArrangement() { registerClasses<NSArrayController>(); }

ClassDescription NSArrayController::describeClass() {
    using Self = NSArrayController;
    return {
        .name = "NSArrayController",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSArrayController>,
        .methods =
            {
                method<&Self::init>("init"),
                method<&Self::content>("content"),
                method<&Self::setContent_>("setContent:"),
                method<&Self::arrangedObjects>("arrangedObjects"),
                method<&Self::rearrangeObjects>("rearrangeObjects"),
                method<&Self::sortDescriptors>("sortDescriptors"),
                method<&Self::setSortDescriptors_>("setSortDescriptors:"),
                method<&Self::filterPredicate>("filterPredicate"),
                method<&Self::setFilterPredicate_>("setFilterPredicate:"),
                method<&Self::selectedObjects>("selectedObjects"),
                method<&Self::setSelectedObjects_>("setSelectedObjects:"),
                method<&Self::selectionIndex>("selectionIndex"),
            },
        .properties =
            {
                property<&Self::content, &Self::setContent_>("content"),
                property<&Self::sortDescriptors, &Self::setSortDescriptors_>("sortDescriptors"),
                property<&Self::filterPredicate, &Self::setFilterPredicate_>("filterPredicate"),
                property<&Self::selectedObjects, &Self::setSelectedObjects_>("selectedObjects"),
                readOnlyProperty<&Self::arrangedObjects>("arrangedObjects"),
                readOnlyProperty<&Self::selectionIndex>("selectionIndex"),
                derived<Selection>("selection"),
                derived<Count>("count"),
                derived<ContentCount>("contentCount"),
                derived<SelectionCount>("selectionCount"),
                derived<IsEmpty>("isEmpty"),
                derived<IsFilteredToNothing>("isFilteredToNothing"),
                derived<HasSelection>("hasSelection"),
                derived<HasSingleSelection>("hasSingleSelection"),
            },
    };
}

NSArrayController NSArrayController::init() const { return *this; }

id NSArrayController::content() const { return *this == nil ? id() : bodyOf(*this)->content(); }

void NSArrayController::setContent_(id const& content) const {
    if (*this != nil) bodyOf(*this)->setContent(content);
}

void NSArrayController::bind_toObject_withKeyPath_options_(NSString const& binding, id const& object,
                                                           NSString const& keyPath, NSDictionary const&) const {
    if (*this == nil) return;
    requireContentBinding(binding);
    bodyOf(*this)->bind(object, keyPath);
}

void NSArrayController::unbind_(NSString const& binding) const {
    if (*this == nil) return;
    requireContentBinding(binding);
    bodyOf(*this)->unbind();
}

NSArray NSArrayController::arrangedObjects() const {
    return *this == nil ? NSArray() : bodyOf(*this)->arrangedObjects();
}

void NSArrayController::rearrangeObjects() const {
    if (*this != nil) bodyOf(*this)->rearrange();
}

NSArray NSArrayController::sortDescriptors() const {
    return *this == nil ? NSArray() : bodyOf(*this)->sortDescriptors();
}

void NSArrayController::setSortDescriptors_(NSArray const& descriptors) const {
    if (*this != nil) bodyOf(*this)->setSortDescriptors(descriptors);
}

NSPredicate NSArrayController::filterPredicate() const {
    return *this == nil ? NSPredicate() : bodyOf(*this)->filterPredicate();
}

void NSArrayController::setFilterPredicate_(NSPredicate const& predicate) const {
    if (*this != nil) bodyOf(*this)->setFilterPredicate(predicate);
}

NSArray NSArrayController::selectedObjects() const {
    return *this == nil ? NSArray() : bodyOf(*this)->selectedObjects();
}

bool NSArrayController::setSelectedObjects_(NSArray const& objects) const {
    return *this != nil && bodyOf(*this)->setSelectedObjects(objects);
}

NSUInteger NSArrayController::selectionIndex() const {
    if (*this == nil) return 0;
    std::span<NSUInteger const> const rows = bodyOf(*this)->selectedRows();
    return rows.empty() ? NSNotFound : rows.front();
}

NSString NSArrayController::identityKeyPath() const {
    return *this == nil ? NSString() : bodyOf(*this)->identityKeyPath();
}

void NSArrayController::setIdentityKeyPath(NSString const& keyPath) const {
    if (*this != nil) bodyOf(*this)->setIdentityKeyPath(keyPath);
}

} // namespace mac
