#pragma once

#include "platform/foundation/objects/ServiceTypes.h"
#include <memory>

// The records that Apple events are made of, and their four-character codes.

namespace mac {

using AEEventClass = FourCharCode;
using AEEventID = FourCharCode;
using AEKeyword = FourCharCode;
using DescType = FourCharCode;
using AEReturnID = std::int16_t;
using AETransactionID = std::int32_t;

// Types of descriptors.
inline constexpr DescType typeNull{"null"};
inline constexpr DescType typeBoolean{"bool"};
inline constexpr DescType typeTrue{"true"};
inline constexpr DescType typeFalse{"fals"};
inline constexpr DescType typeSInt16{"shor"};
inline constexpr DescType typeSInt32{"long"};
inline constexpr DescType typeUInt32{"magn"};
inline constexpr DescType typeSInt64{"comp"};
inline constexpr DescType typeUInt64{"ucom"};
inline constexpr DescType typeIEEE32BitFloatingPoint{"sing"};
inline constexpr DescType typeIEEE64BitFloatingPoint{"doub"};
// Linux: plain text is UTF-8, the encoding of this system's text, and read as Mac OS Roman only where it is not.
inline constexpr DescType typeText{"TEXT"};
// UTF-16 in the machine's byte order, without a byte order mark.
inline constexpr DescType typeUnicodeText{"utxt"};
inline constexpr DescType typeUTF8Text{"utf8"};
// UTF-16 with a byte order mark, or big-endian without one.
inline constexpr DescType typeUTF16ExternalRepresentation{"ut16"};
inline constexpr DescType typeEnumerated{"enum"};
inline constexpr DescType typeType{"type"};
inline constexpr DescType typeKeyword{"keyw"};
inline constexpr DescType typeProperty{"prop"};
inline constexpr DescType typeLongDateTime{"ldt "};
inline constexpr DescType typeAEList{"list"};
inline constexpr DescType typeAERecord{"reco"};
inline constexpr DescType typeAppleEvent{"aevt"};
inline constexpr DescType typeObjectSpecifier{"obj "};
inline constexpr DescType typeFSRef{"fsrf"};
inline constexpr DescType typeFileURL{"furl"};
inline constexpr DescType typeData{"tdta"};
inline constexpr DescType typeWildCard{"****"};

// Types of addresses.
inline constexpr DescType typeProcessSerialNumber{"psn "};
inline constexpr DescType typeApplSignature{"sign"};
inline constexpr DescType typeApplicationBundleID{"bund"};
inline constexpr DescType typeKernelProcessID{"kpid"};

// Parameters of events.
inline constexpr AEKeyword keyDirectObject{"----"};
inline constexpr AEKeyword keyErrorNumber{"errn"};
inline constexpr AEKeyword keyErrorString{"errs"};

// Attributes of events.
inline constexpr AEKeyword keyAddressAttr{"addr"};
inline constexpr AEKeyword keyEventClassAttr{"evcl"};
inline constexpr AEKeyword keyEventIDAttr{"evid"};
inline constexpr AEKeyword keyReturnIDAttr{"rtid"};
inline constexpr AEKeyword keyTransactionIDAttr{"tran"};
// The address and the process ID of the sender, set on arrival whatever the event itself says.
inline constexpr AEKeyword keyOriginalAddressAttr{"from"};
inline constexpr AEKeyword keySenderPIDAttr{"spid"};

// Classes and numbers of events.
inline constexpr AEEventClass kCoreEventClass{"aevt"};
inline constexpr AEEventID kAEOpenApplication{"oapp"};
inline constexpr AEEventID kAEReopenApplication{"rapp"};
inline constexpr AEEventID kAEQuitApplication{"quit"};
inline constexpr AEEventID kAEAnswer{"ansr"};

// A new return ID for each event; no transaction.
inline constexpr AEReturnID kAutoGenerateReturnID = -1;
inline constexpr AETransactionID kAnyTransactionID = 0;

// The value cannot be converted to the type.
inline constexpr OSErr errAECoercionFail = -1700;
// No descriptor has the keyword or index.
inline constexpr OSErr errAEDescNotFound = -1701;
// The data is not that of a descriptor.
inline constexpr OSErr errAECorruptData = -1702;

// The data of a descriptor: bytes, a list or a record.
struct DescriptorContents;
using AEDataStorage = std::shared_ptr<DescriptorContents>;

// A typed value. Copies share the data, which is freed with the last of them. Without data it is an empty value of its
// type.
struct AEDesc {
    DescType descriptorType{typeNull};
    AEDataStorage dataHandle{};
};
using AppleEvent = AEDesc;

// The greatest depth of lists, records and events within each other, the outermost counted. Deeper nesting is refused,
// so that code that traverses a descriptor may recurse.
inline constexpr std::size_t kDescriptorMaximumDepth = 512;

// Releases the data and makes the descriptor null. Answers noErr; paramErr for a null pointer.
OSErr AEDisposeDesc(AEDesc* desc);

// Converts the value to another type and stores it in `result`: numbers, truth values, texts and codes into each other
// where nothing but a fraction is lost (halves are rounded to the even neighbour), any value into a list that holds it,
// a list of one item into what the item can be converted to, a record into one of another type. errAECoercionFail, and
// a null descriptor, if the value cannot be converted; paramErr for a null pointer.
OSErr AECoerceDesc(AEDesc const* desc, DescType toType, AEDesc* result);

// Adds a conversion from one type to another, for AECoerceDesc and every accessor that converts; it takes precedence
// over a built-in one. The handler stores the value and answers noErr, or an error; it may be called on any thread. A
// second handler for a pair of types replaces the first.
using AECoercionHandler = OSErr (*)(AEDesc const& desc, DescType toType, AEDesc& result);
OSErr AEInstallCoercionHandler(DescType fromType, DescType toType, AECoercionHandler handler);

} // namespace mac
