#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/propertylists/PropertyList.h"
#include "platform/foundation/propertylists/PropertyListLimits.h"
#include "platform/foundation/propertylists/PropertyListXML.h"
#include <algorithm>

namespace mac {

namespace {

struct ReadList {
    id list;
    NSPropertyListFormat format;
};

Failure failureOfBothParsers(std::string const& ofXML, std::string const& ofOldStyle) {
    return {"XML parser error:\n\t" + ofXML + "\nOld-style plist parser error:\n\t" + ofOldStyle + "\n"};
}

Result<ReadList, Failure> readList(std::span<std::byte const> data, NSPropertyListMutabilityOptions option) {
    if (data.empty()) return Failure{"Cannot parse a NULL or zero-length data"};
    if (data.size() > kPropertyListMaximumInput) return Failure{std::string(kPropertyListTooLarge)};
    if (isPropertyListBinary(data)) {
        Result<id, Failure> const list = readPropertyListBinary(data, option);
        if (list.hasValue()) return ReadList{list.value(), NSPropertyListBinaryFormat_v1_0};
        return Failure{"Binary parser error:\n\t" + list.problem().reason + "\n"};
    }
    Result<std::u16string, Failure> const text = decodePropertyListText(data);
    if (!text.hasValue()) return failureOfBothParsers(text.problem().reason, text.problem().reason);
    Result<id, Failure> const xml = readPropertyListXML(text.value(), option);
    if (xml.hasValue()) return ReadList{xml.value(), NSPropertyListXMLFormat_v1_0};
    Result<id, Failure> const oldStyle = readPropertyListOldStyle(text.value(), option);
    if (oldStyle.hasValue()) return ReadList{oldStyle.value(), NSPropertyListOpenStepFormat};
    return failureOfBothParsers(xml.problem().reason, oldStyle.problem().reason);
}

Result<std::string, Failure> writeList(id const& propertyList, NSPropertyListFormat format) {
    if (format == NSPropertyListXMLFormat_v1_0) return writePropertyListXML(propertyList);
    if (format == NSPropertyListBinaryFormat_v1_0) return writePropertyListBinary(propertyList);
    if (format == NSPropertyListOpenStepFormat) return Failure{"Old-style property lists cannot be written"};
    return Failure{"The format of the property list is not known"};
}

// Recursion ends at the depth that lists have at most.
bool isValidForOldStyle(id const& value, PropertyListBudget& budget, std::size_t depth) {
    if (!budget.add(1) || depth > kPropertyListMaximumDepth) return false;
    switch (propertyListKind(value)) {
    case PropertyListKind::String:
    case PropertyListKind::Data:
        return true;
    case PropertyListKind::Array:
        return std::ranges::all_of(uncheckedCast<NSArray>(value), [&budget, depth](id const& element) {
            return isValidForOldStyle(element, budget, depth + 1);
        });
    case PropertyListKind::Dictionary: {
        auto const dictionary = uncheckedCast<NSDictionary>(value);
        return sortedKeys(dictionary).has_value() && isValidForOldStyle(dictionary.allValues(), budget, depth);
    }
    default:
        return false;
    }
}

void report(std::string const& reason, NSString* errorString) {
    if (errorString) *errorString = NSString::stringWithUTF8String_(reason);
}

} // namespace

ClassDescription NSPropertyListSerialization::describeClass() {
    return {
        .name = "NSPropertyListSerialization",
        .superclass = classOf<NSObject>(),
    };
}

id NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
    NSData const& data, NSPropertyListMutabilityOptions option, NSPropertyListFormat* format, NSString* errorString) {
    Result<ReadList, Failure> const read = readList(data.span(), option);
    if (!read.hasValue()) {
        report(read.problem().reason, errorString);
        return nil;
    }
    if (format) *format = read.value().format;
    return read.value().list;
}

NSData NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(id const& propertyList,
                                                                                  NSPropertyListFormat format,
                                                                                  NSString* errorString) {
    Result<std::string, Failure> const written = writeList(propertyList, format);
    if (written.hasValue()) return NSData::dataWithBytes(std::as_bytes(std::span(written.value())));
    report(written.problem().reason, errorString);
    return nil;
}

bool NSPropertyListSerialization::propertyList_isValidForFormat_(id const& propertyList, NSPropertyListFormat format) {
    PropertyListBudget budget;
    if (format == NSPropertyListOpenStepFormat) return isValidForOldStyle(propertyList, budget, 0);
    return writeList(propertyList, format).hasValue();
}

} // namespace mac
