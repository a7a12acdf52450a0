#include "platform/events/DescriptorContents.h"

// The items of lists, the fields of records, and the parameters and attributes of events.

namespace mac {

namespace {

NSAppleEventDescriptor entry(AEDesc const* desc) {
    return desc ? adopt<NSAppleEventDescriptor>(*desc) : NSAppleEventDescriptor(nil);
}

// The entry at the index, counted from 1; null if it is out of range.
DescriptorEntry const* entryAt(AEDesc const* desc, NSInteger index) {
    if (!desc || index < 1) return nullptr;
    std::vector<DescriptorEntry> const& entries = contentsOf(*desc).entries;
    auto const place = static_cast<std::size_t>(index) - 1;
    return place < entries.size() ? &entries[place] : nullptr;
}

void removeEntry(AEDesc& desc, DescriptorEntry const* found) {
    if (!found) return;
    auto const place = found - contentsOf(desc).entries.data();
    std::vector<DescriptorEntry>& entries = changeableContentsOf(desc).entries;
    entries.erase(entries.begin() + place);
}

template <class T>
T attribute(NSAppleEventDescriptor const& event, AEKeyword keyword, DescType type) {
    AEDesc const* const desc = event.aeDesc();
    AEDesc const* const value = desc ? findEntry(contentsOf(*desc).attributes, keyword) : nullptr;
    return value ? valueOf<T>(*value, type).value_or(T()) : T();
}

} // namespace

AEEventClass NSAppleEventDescriptor::eventClass() const {
    return AEEventClass(attribute<std::uint32_t>(*this, keyEventClassAttr, typeType));
}

AEEventID NSAppleEventDescriptor::eventID() const {
    return AEEventID(attribute<std::uint32_t>(*this, keyEventIDAttr, typeType));
}

AEReturnID NSAppleEventDescriptor::returnID() const {
    return attribute<AEReturnID>(*this, keyReturnIDAttr, typeSInt16);
}

AETransactionID NSAppleEventDescriptor::transactionID() const {
    return attribute<AETransactionID>(*this, keyTransactionIDAttr, typeSInt32);
}

NSAppleEventDescriptor NSAppleEventDescriptor::attributeDescriptorForKeyword_(AEKeyword keyword) const {
    return *this == nil ? NSAppleEventDescriptor(nil) : entry(findEntry(contentsOf(*aeDesc()).attributes, keyword));
}

void NSAppleEventDescriptor::setAttributeDescriptor_forKeyword_(NSAppleEventDescriptor const& descriptor,
                                                                AEKeyword keyword) const {
    if (*this == nil || descriptor == nil) return;
    putEntry(bodyOf(*this)->desc, keyword, *descriptor.aeDesc(), true);
}

NSAppleEventDescriptor NSAppleEventDescriptor::paramDescriptorForKeyword_(AEKeyword keyword) const {
    return descriptorForKeyword_(keyword);
}

void NSAppleEventDescriptor::setParamDescriptor_forKeyword_(NSAppleEventDescriptor const& descriptor,
                                                            AEKeyword keyword) const {
    setDescriptor_forKeyword_(descriptor, keyword);
}

void NSAppleEventDescriptor::removeParamDescriptorWithKeyword_(AEKeyword keyword) const {
    removeDescriptorWithKeyword_(keyword);
}

NSInteger NSAppleEventDescriptor::numberOfItems() const {
    return *this == nil ? 0 : static_cast<NSInteger>(contentsOf(*aeDesc()).entries.size());
}

void NSAppleEventDescriptor::insertDescriptor_atIndex_(NSAppleEventDescriptor const& descriptor,
                                                       NSInteger index) const {
    if (*this == nil || descriptor == nil) return;
    putItem(bodyOf(*this)->desc, index, *descriptor.aeDesc());
}

NSAppleEventDescriptor NSAppleEventDescriptor::descriptorAtIndex_(NSInteger index) const {
    DescriptorEntry const* const found = entryAt(aeDesc(), index);
    return found ? entry(&found->desc) : NSAppleEventDescriptor(nil);
}

void NSAppleEventDescriptor::removeDescriptorAtIndex_(NSInteger index) const {
    if (*this != nil) removeEntry(bodyOf(*this)->desc, entryAt(aeDesc(), index));
}

NSAppleEventDescriptor NSAppleEventDescriptor::descriptorForKeyword_(AEKeyword keyword) const {
    if (*this == nil) return nil;
    DescriptorContents const& contents = contentsOf(*aeDesc());
    if (contents.form == DescriptorForm::List) return nil;
    return entry(findEntry(contents.entries, keyword));
}

void NSAppleEventDescriptor::setDescriptor_forKeyword_(NSAppleEventDescriptor const& descriptor,
                                                       AEKeyword keyword) const {
    if (*this == nil || descriptor == nil) return;
    putEntry(bodyOf(*this)->desc, keyword, *descriptor.aeDesc());
}

void NSAppleEventDescriptor::removeDescriptorWithKeyword_(AEKeyword keyword) const {
    if (*this == nil || contentsOf(*aeDesc()).form == DescriptorForm::List) return;
    std::vector<DescriptorEntry> const& entries = contentsOf(*aeDesc()).entries;
    for (DescriptorEntry const& candidate : entries) {
        if (candidate.keyword == keyword) return removeEntry(bodyOf(*this)->desc, &candidate);
    }
}

AEKeyword NSAppleEventDescriptor::keywordForDescriptorAtIndex_(NSInteger index) const {
    DescriptorEntry const* const found = entryAt(aeDesc(), index);
    return found ? found->keyword : AEKeyword();
}

} // namespace mac
