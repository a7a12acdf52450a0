#pragma once

#include "platform/events/AEDataModel.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/text/NSString.h"

namespace mac {

// A typed value of an Apple event or of a script: bytes with a four-character type, a list, a record, or an event. What
// is put into a list, record or event is copied, and so is what comes out; nothing that is changed afterwards shows in
// the other. An accessor converts the value as AECoerceDesc does and answers nil, 0 or NO where it cannot be had. One
// thread at a time; a nil descriptor answers nil, 0, NO or a zero code.
class NSAppleEventDescriptor : public Handle<NSAppleEventDescriptor, NSObject> {
public:
    class Body;
    using Handle::Handle;

    static ClassDescription describeClass();

    // Null, without data.
    static NSAppleEventDescriptor nullDescriptor();
    // A copy of the bytes; what `data` answered for a list, a record, an event or an object specifier becomes one
    // again. Nil for a null pointer with a length.
    static NSAppleEventDescriptor descriptorWithDescriptorType_bytes_length_(DescType type, void const* bytes,
                                                                             NSUInteger length);
    // The same; nil data are no bytes.
    static NSAppleEventDescriptor descriptorWithDescriptorType_data_(DescType type, NSData const& data);
    // Of type 'true' or 'fals', as truth values are that scripts answer.
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
    // The bytes; of a list, a record or an event a flat form of it, for this machine. Nil where that would be too
    // large.
    NSData data() const;
    // Valid while an unchanged object lives; null for nil. Not to be disposed of.
    AEDesc const* aeDesc() const;

    // YES also for numbers but 0, for the text "true" and the code 'yes '.
    bool booleanValue() const;
    OSType enumCodeValue() const;
    // Reals are rounded; 0 for what is beyond 32 bits.
    std::int32_t int32Value() const;
    OSType typeCodeValue() const;
    // Of numbers the fewest digits that read back as the same number; of a code its four characters, in Mac OS Roman;
    // "true" or "false". Nil for a list that has not just one item, for a record, and for what has no text.
    NSString stringValue() const;
    // Nil where the value cannot be had as that type.
    NSAppleEventDescriptor coerceToDescriptorType_(DescType type) const;

    // Of an event; else zero.
    AEEventClass eventClass() const;
    AEEventID eventID() const;
    AEReturnID returnID() const;
    AETransactionID transactionID() const;

    // Of an event, nil where there is none. Setting replaces; nil, and anything but an event, sets nothing.
    NSAppleEventDescriptor attributeDescriptorForKeyword_(AEKeyword keyword) const;
    void setAttributeDescriptor_forKeyword_(NSAppleEventDescriptor const& descriptor, AEKeyword keyword) const;
    // Of an event or record.
    NSAppleEventDescriptor paramDescriptorForKeyword_(AEKeyword keyword) const;
    void setParamDescriptor_forKeyword_(NSAppleEventDescriptor const& descriptor, AEKeyword keyword) const;
    void removeParamDescriptorWithKeyword_(AEKeyword keyword) const;

    // Items of a list, fields of a record, parameters of an event; their indexes count from 1.
    NSInteger numberOfItems() const;
    // Of a list alone: replaces the item at the index, or appends for 0 and one past the last. Anything else, and nil,
    // does nothing; so does what would nest deeper than kDescriptorMaximumDepth, which is logged.
    void insertDescriptor_atIndex_(NSAppleEventDescriptor const& descriptor, NSInteger index) const;
    NSAppleEventDescriptor descriptorAtIndex_(NSInteger index) const;
    void removeDescriptorAtIndex_(NSInteger index) const;
    // The same as the three for parameters.
    NSAppleEventDescriptor descriptorForKeyword_(AEKeyword keyword) const;
    void setDescriptor_forKeyword_(NSAppleEventDescriptor const& descriptor, AEKeyword keyword) const;
    void removeDescriptorWithKeyword_(AEKeyword keyword) const;
    // Zero in a list and where there is no such index.
    AEKeyword keywordForDescriptorAtIndex_(NSInteger index) const;
};

} // namespace mac
