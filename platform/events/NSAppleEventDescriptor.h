#pragma once

#include "platform/events/AEDataModel.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

// A typed value of an Apple event or of a script: bytes with a four-character type, a list, a record, or an event. A
// descriptor that is put into a list, record or event is copied, and so is one that is taken out: later changes to
// either do not show in the other. An accessor converts the value as AECoerceDesc does and answers nil, 0 or NO if it
// cannot be converted. One thread at a time; a nil descriptor answers nil, 0, NO or a zero code.
class NSAppleEventDescriptor : public Handle<NSAppleEventDescriptor, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // A descriptor of type typeNull, without data.
    static NSAppleEventDescriptor nullDescriptor();
    // A descriptor with a copy of the bytes. For the type of a list, a record, an event or an object specifier, bytes
    // that `data` answered become such a container again. Nil for a null pointer with a length.
    static NSAppleEventDescriptor descriptorWithDescriptorType_bytes_length_(DescType type, void const* bytes,
                                                                             NSUInteger length);
    // A descriptor with a copy of the data, as descriptorWithDescriptorType_bytes_length_ makes it; nil stands for no
    // bytes.
    static NSAppleEventDescriptor descriptorWithDescriptorType_data_(DescType type, NSData const& data);
    // A descriptor of type 'true' or 'fals', like the truth values that scripts answer.
    static NSAppleEventDescriptor descriptorWithBoolean_(BOOL value);
    static NSAppleEventDescriptor descriptorWithEnumCode_(OSType code);
    static NSAppleEventDescriptor descriptorWithInt32_(std::int32_t value);
    static NSAppleEventDescriptor descriptorWithTypeCode_(OSType code);
    // Unicode text, lone surrogates included; nil for nil.
    static NSAppleEventDescriptor descriptorWithString_(NSString const& string);
    static NSAppleEventDescriptor listDescriptor();
    static NSAppleEventDescriptor recordDescriptor();
    // An event without parameters. A nil target leaves it without an address: it can be dispatched, but not sent. The
    // return ID kAutoGenerateReturnID is replaced by one that no recent event of this process has.
    static NSAppleEventDescriptor appleEventWithEventClass_eventID_targetDescriptor_returnID_transactionID_(
        AEEventClass eventClass, AEEventID eventID, NSAppleEventDescriptor const& target, AEReturnID returnID,
        AETransactionID transactionID);
    // For implementations: shares the data.
    static NSAppleEventDescriptor descriptorWithAEDesc(AEDesc desc);

    DescType descriptorType() const;
    // The bytes; for a list, a record or an event its flat form (FlatDescriptor.h), which only this machine reads. Nil
    // if that would be too large.
    NSData data() const;
    // The descriptor's record, valid until the object is changed or freed; null for nil. It belongs to the object: do
    // not dispose of it.
    AEDesc const* aeDesc() const;

    // The truth value; YES also for numbers other than 0, for the text "true" and the code 'yes '.
    bool booleanValue() const;
    OSType enumCodeValue() const;
    // The value as an integer, reals rounded; 0 if it is beyond 32 bits.
    std::int32_t int32Value() const;
    OSType typeCodeValue() const;
    // The value as text: a number in the fewest digits that read back as the same number, a code as its four characters
    // in Mac OS Roman, a truth value as "true" or "false". Nil for a list of other than one item, for a record, and for
    // a value that has no text.
    NSString stringValue() const;
    // A new descriptor with the value converted to the type; nil if it cannot be converted.
    NSAppleEventDescriptor coerceToDescriptorType_(DescType type) const;

    // The class and ID, return ID and transaction ID of an event; 0 for other descriptors.
    AEEventClass eventClass() const;
    AEEventID eventID() const;
    AEReturnID returnID() const;
    AETransactionID transactionID() const;

    // The attribute of an event under the keyword; nil if there is none. Setting replaces it; a nil value, or a
    // descriptor that is no event, sets nothing.
    NSAppleEventDescriptor attributeDescriptorForKeyword_(AEKeyword keyword) const;
    void setAttributeDescriptor_forKeyword_(NSAppleEventDescriptor const& descriptor, AEKeyword keyword) const;
    // The parameter of an event or the field of a record under the keyword; nil if there is none. Setting replaces it;
    // a nil value sets nothing.
    NSAppleEventDescriptor paramDescriptorForKeyword_(AEKeyword keyword) const;
    void setParamDescriptor_forKeyword_(NSAppleEventDescriptor const& descriptor, AEKeyword keyword) const;
    void removeParamDescriptorWithKeyword_(AEKeyword keyword) const;

    // The number of items of a list, fields of a record or parameters of an event. Their indexes count from 1.
    NSInteger numberOfItems() const;
    // Replaces the item of a list at the index; appends for 0 and one past the last. Other indexes, other descriptors
    // and a nil item change nothing; nor does an item that would nest deeper than kDescriptorMaximumDepth, which is
    // logged.
    void insertDescriptor_atIndex_(NSAppleEventDescriptor const& descriptor, NSInteger index) const;
    NSAppleEventDescriptor descriptorAtIndex_(NSInteger index) const;
    void removeDescriptorAtIndex_(NSInteger index) const;
    // The parameter of an event or the field of a record under the keyword, like the three functions for parameters
    // above.
    NSAppleEventDescriptor descriptorForKeyword_(AEKeyword keyword) const;
    void setDescriptor_forKeyword_(NSAppleEventDescriptor const& descriptor, AEKeyword keyword) const;
    void removeDescriptorWithKeyword_(AEKeyword keyword) const;
    // The keyword of the field or parameter at the index; 0 in a list and for an index out of range.
    AEKeyword keywordForDescriptorAtIndex_(NSInteger index) const;
};

} // namespace mac
