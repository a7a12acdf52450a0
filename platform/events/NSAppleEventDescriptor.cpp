#include "platform/events/NSAppleEventDescriptor.h"
#include "platform/events/DescriptorCoercion.h"
#include "platform/events/DescriptorContents.h"
#include "platform/events/FlatDescriptor.h"
#include "platform/foundation/objects/Method.h"
#include <atomic>

namespace mac {

namespace {

AEReturnID newReturnID() {
    static std::atomic<std::uint16_t> last{0};
    // Counts from 1 to 32767, then from 1 again.
    return static_cast<AEReturnID>(last.fetch_add(1) % 0x7FFF + 1);
}

NSAppleEventDescriptor made(AEDesc desc) { return adopt<NSAppleEventDescriptor>(std::move(desc)); }

AEDesc makeCode(DescType type, OSType code) { return makeDescOf(type, code.value()); }

bool isContainerType(DescType type) {
    return type == typeAEList || type == typeAERecord || type == typeAppleEvent || type == typeObjectSpecifier;
}

template <class T>
T valueAs(NSAppleEventDescriptor const& descriptor, DescType type) {
    AEDesc const* const desc = descriptor.aeDesc();
    std::optional<AEDesc> const value = desc ? coerced(*desc, type) : std::nullopt;
    return value ? valueOf<T>(*value, type).value_or(T()) : T();
}

} // namespace

ClassDescription NSAppleEventDescriptor::describeClass() {
    return {
        .name = "NSAppleEventDescriptor",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSAppleEventDescriptor>,
        .methods =
            {
                method<&NSAppleEventDescriptor::data>("data"),
                method<&NSAppleEventDescriptor::booleanValue>("booleanValue"),
                method<&NSAppleEventDescriptor::int32Value>("int32Value"),
                method<&NSAppleEventDescriptor::stringValue>("stringValue"),
                method<&NSAppleEventDescriptor::numberOfItems>("numberOfItems"),
                method<&NSAppleEventDescriptor::insertDescriptor_atIndex_>("insertDescriptor:atIndex:"),
                method<&NSAppleEventDescriptor::descriptorAtIndex_>("descriptorAtIndex:"),
                method<&NSAppleEventDescriptor::removeDescriptorAtIndex_>("removeDescriptorAtIndex:"),
            },
        .classMethods =
            {
                method<&NSAppleEventDescriptor::nullDescriptor>("nullDescriptor"),
                method<&NSAppleEventDescriptor::listDescriptor>("listDescriptor"),
                method<&NSAppleEventDescriptor::recordDescriptor>("recordDescriptor"),
            },
    };
}

NSAppleEventDescriptor NSAppleEventDescriptor::nullDescriptor() { return made({}); }

NSAppleEventDescriptor NSAppleEventDescriptor::descriptorWithDescriptorType_bytes_length_(DescType type,
                                                                                          void const* bytes,
                                                                                          NSUInteger length) {
    if (!bytes && length > 0) return nil;
    std::span<std::byte const> const span(static_cast<std::byte const*>(bytes), length);
    if (!isContainerType(type)) return made(makeDesc(type, span));
    Result<AEDesc, Failure> const flat = unflattened(span);
    return made(flat.hasValue() && flat.value().descriptorType == type ? flat.value() : makeDesc(type, span));
}

NSAppleEventDescriptor NSAppleEventDescriptor::descriptorWithDescriptorType_data_(DescType type, NSData const& data) {
    return descriptorWithDescriptorType_bytes_length_(type, data.bytes(), data.length());
}

NSAppleEventDescriptor NSAppleEventDescriptor::descriptorWithBoolean_(BOOL value) {
    return made({value ? typeTrue : typeFalse, nullptr});
}

NSAppleEventDescriptor NSAppleEventDescriptor::descriptorWithEnumCode_(OSType code) {
    return made(makeCode(typeEnumerated, code));
}

NSAppleEventDescriptor NSAppleEventDescriptor::descriptorWithInt32_(std::int32_t value) {
    return made(makeDescOf(typeSInt32, value));
}

NSAppleEventDescriptor NSAppleEventDescriptor::descriptorWithTypeCode_(OSType code) {
    return made(makeCode(typeType, code));
}

NSAppleEventDescriptor NSAppleEventDescriptor::descriptorWithString_(NSString const& string) {
    if (string == nil) return nil;
    return made(makeText(string.codeUnits()));
}

NSAppleEventDescriptor NSAppleEventDescriptor::listDescriptor() {
    return made(makeContainer(typeAEList, DescriptorForm::List));
}

NSAppleEventDescriptor NSAppleEventDescriptor::recordDescriptor() {
    return made(makeContainer(typeAERecord, DescriptorForm::Record));
}

NSAppleEventDescriptor
NSAppleEventDescriptor::appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
    AEEventClass eventClass, AEEventID eventID, NSAppleEventDescriptor const& target, AEReturnID returnID,
    AETransactionID transactionID) {
    AEDesc event = makeContainer(typeAppleEvent, DescriptorForm::Event);
    putEntry(event, keyEventClassAttr, makeCode(typeType, eventClass), true);
    putEntry(event, keyEventIDAttr, makeCode(typeType, eventID), true);
    AEReturnID const number = returnID == kAutoGenerateReturnID ? newReturnID() : returnID;
    putEntry(event, keyReturnIDAttr, makeDescOf(typeSInt16, number), true);
    putEntry(event, keyTransactionIDAttr, makeDescOf(typeSInt32, transactionID), true);
    if (target != nil) putEntry(event, keyAddressAttr, *target.aeDesc(), true);
    return made(std::move(event));
}

NSAppleEventDescriptor NSAppleEventDescriptor::descriptorWithAEDesc(AEDesc desc) { return made(std::move(desc)); }

DescType NSAppleEventDescriptor::descriptorType() const {
    return *this == nil ? DescType() : bodyOf(*this)->desc.descriptorType;
}

NSData NSAppleEventDescriptor::data() const {
    if (*this == nil) return nil;
    AEDesc const& desc = bodyOf(*this)->desc;
    DescriptorContents const& contents = contentsOf(desc);
    if (contents.form == DescriptorForm::Bytes) return NSData::dataWithBytes(contents.bytes);
    Result<std::vector<std::byte>, Failure> const flat = flattened(desc);
    return flat.hasValue() ? NSData::dataWithBytes(flat.value()) : NSData(nil);
}

AEDesc const* NSAppleEventDescriptor::aeDesc() const { return *this == nil ? nullptr : &bodyOf(*this)->desc; }

bool NSAppleEventDescriptor::booleanValue() const { return valueAs<std::uint8_t>(*this, typeBoolean) != 0; }

OSType NSAppleEventDescriptor::enumCodeValue() const { return OSType(valueAs<std::uint32_t>(*this, typeEnumerated)); }

std::int32_t NSAppleEventDescriptor::int32Value() const { return valueAs<std::int32_t>(*this, typeSInt32); }

OSType NSAppleEventDescriptor::typeCodeValue() const { return OSType(valueAs<std::uint32_t>(*this, typeType)); }

NSString NSAppleEventDescriptor::stringValue() const {
    if (*this == nil) return nil;
    std::optional<AEDesc> const value = coerced(bodyOf(*this)->desc, typeUnicodeText);
    std::optional<std::u16string> const text = value ? plainTextOf(*value) : std::nullopt;
    return text ? NSString::stringWithCodeUnits(*text) : NSString(nil);
}

NSAppleEventDescriptor NSAppleEventDescriptor::coerceToDescriptorType_(DescType type) const {
    if (*this == nil) return nil;
    std::optional<AEDesc> value = coerced(bodyOf(*this)->desc, type);
    return value ? made(std::move(*value)) : NSAppleEventDescriptor(nil);
}

} // namespace mac
