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
// UTF-16 in the order of the machine, without a mark.
inline constexpr DescType typeUnicodeText{"utxt"};
inline constexpr DescType typeUTF8Text{"utf8"};
// UTF-16 with a mark, or with the more significant byte first.
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
// The process that sent the event, set on arrival whatever the sender says.
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

// A value cannot be had as the type asked for; nothing under the keyword or index; data that is no descriptor.
inline constexpr OSErr errAECoercionFail = -1700;
inline constexpr OSErr errAEDescNotFound = -1701;
inline constexpr OSErr errAECorruptData = -1702;

// The data of a descriptor: bytes, a list or a record.
struct DescriptorContents;
using AEDataStorage = std::shared_ptr<DescriptorContents>;

// A typed value: copied as a handle is, so that a copy costs a count and the last one to go frees the data. Without
// data it is an empty value of its type.
struct AEDesc {
    DescType descriptorType{typeNull};
    AEDataStorage dataHandle{};
};
using AppleEvent = AEDesc;

// Lists within lists, records and events, the outermost counted. What would nest deeper is refused, so that whatever
// walks a descriptor may recurse.
inline constexpr std::size_t kDescriptorMaximumDepth = 512;

// Lets the data go and makes the descriptor null. Answers noErr; paramErr for a null pointer.
OSErr AEDisposeDesc(AEDesc* desc);

// The value as another type, stored through `result`: numbers, truth values, texts and codes into each other where
// nothing is lost but a fraction (rounded to the even neighbour), anything into a list of itself, a list of one into
// what its item can be, a record into one of another type. errAECoercionFail, and a null descriptor, where it cannot be
// had; paramErr for a null pointer.
OSErr AECoerceDesc(AEDesc const* desc, DescType toType, AEDesc* result);

// Teaches AECoerceDesc, and with it every accessor that converts, a further pair of types or a better way for a known
// one: the function stores the value and answers noErr, or an error. It may be called on any thread. A second handler
// for a pair takes the first one's place.
using AECoercionHandler = OSErr (*)(AEDesc const& desc, DescType toType, AEDesc& result);
OSErr AEInstallCoercionHandler(DescType fromType, DescType toType, AECoercionHandler handler);

} // namespace mac
