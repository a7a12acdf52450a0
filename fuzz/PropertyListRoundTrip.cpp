#include "fuzz/Trials.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/propertylists/PropertyList.h"
#include "platform/foundation/propertylists/PropertyListXML.h"
#include "tests/platform/foundation/propertylists/PropertyListDump.h"
#include <functional>

namespace mac::fuzz {

namespace {

using test::CarriedBy;
using test::dump;

// Lists that share objects can stand for millions; those are read, but not written and compared, which would take
// seconds.
constexpr std::size_t kMostCompared = 20000;

using Reader = std::function<Result<id, Failure>(NSPropertyListMutabilityOptions)>;

// How many objects there are below the list, up to the bound.
void count(id const& list, std::size_t& objects) {
    if (++objects > kMostCompared) return;
    for (id const& element : as<NSArray>(list))
        count(element, objects);
    for (id const& value : as<NSDictionary>(list).allValues())
        count(value, objects);
}

bool isLarge(id const& list) {
    std::size_t objects = 0;
    count(list, objects);
    return objects > kMostCompared;
}

Result<id, Failure> readText(std::span<std::byte const> bytes, NSPropertyListMutabilityOptions option,
                             Result<id, Failure> (*read)(std::u16string_view, NSPropertyListMutabilityOptions)) {
    Result<std::u16string, Failure> const text = decodePropertyListText(bytes);
    if (!text.hasValue()) return Failure{text.problem().reason};
    return read(text.value(), option);
}

std::string complaintAboutBinaryOf(id const& list) {
    Result<std::string, Failure> const written = writePropertyListBinary(list);
    if (!written.hasValue()) return "cannot be written as binary: " + written.problem().reason;
    Result<id, Failure> const read =
        readPropertyListBinary(std::as_bytes(std::span(written.value())), NSPropertyListImmutable);
    if (!read.hasValue()) return "the binary form cannot be read: " + read.problem().reason;
    if (dump(read.value()) != dump(list)) return "the binary form is another list";
    return writePropertyListBinary(read.value()).value() == written.value() ? "" : "the binary form is not stable";
}

std::string complaintAboutXMLOf(id const& list, bool canAlwaysBeWritten) {
    Result<std::string, Failure> const written = writePropertyListXML(list);
    // A list that came from XML can be written as XML, unless its strings hold control characters.
    std::string const told = dump(list);
    bool const holdsControls = told.find("\\u000") != std::string::npos || told.find("\\u001") != std::string::npos;
    bool const mayFail = !canAlwaysBeWritten || holdsControls;
    if (!written.hasValue() && (!mayFail || written.problem().reason.empty()))
        return "cannot be written as XML: " + written.problem().reason;
    if (!written.hasValue()) return "";
    Result<id, Failure> const read =
        readText(std::as_bytes(std::span(written.value())), NSPropertyListImmutable, readPropertyListXML);
    if (!read.hasValue()) return "the XML form cannot be read: " + read.problem().reason;
    if (dump(read.value(), CarriedBy::XML) != dump(list, CarriedBy::XML)) return "the XML form is another list";
    return writePropertyListXML(read.value()).value() == written.value() ? "" : "the XML form is not stable";
}

std::string complaintAbout(Reader const& read, bool comesFromXML) {
    Result<id, Failure> const list = read(NSPropertyListImmutable);
    Result<id, Failure> const changeable = read(NSPropertyListMutableContainersAndLeaves);
    if (list.hasValue() != changeable.hasValue()) return "mutability decides whether it can be read";
    if (!list.hasValue()) return list.problem().reason.empty() ? "there is neither a list nor a reason" : "";
    if (isLarge(list.value())) return "";
    if (dump(list.value()) != dump(changeable.value())) return "mutability decides what is read";
    std::string const complaint = complaintAboutBinaryOf(list.value());
    return complaint.empty() ? complaintAboutXMLOf(list.value(), comesFromXML) : complaint;
}

// A plain list must be the one that the parser reads, which a comment behind it brings about.
std::string complaintAboutPlainXML(std::span<std::byte const> bytes) {
    Result<std::u16string, Failure> const text = decodePropertyListText(bytes);
    if (!text.hasValue()) return "";
    std::optional<id> const plain = readPlainPropertyListXML(text.value(), NSPropertyListImmutable);
    if (!plain || isLarge(*plain)) return "";
    Result<id, Failure> const read = readPropertyListXML(text.value() + u"<!-- -->", NSPropertyListImmutable);
    if (!read.hasValue()) return "the parser cannot read the plain list: " + read.problem().reason;
    return dump(read.value()) == dump(*plain) ? "" : "the plain list is another one";
}

} // namespace

std::string complaintAboutXML(std::span<std::byte const> bytes) {
    std::string const complaint = complaintAboutPlainXML(bytes);
    if (!complaint.empty()) return complaint;
    return complaintAbout(
        [bytes](NSPropertyListMutabilityOptions option) { return readText(bytes, option, readPropertyListXML); }, true);
}

std::string complaintAboutBinary(std::span<std::byte const> bytes) {
    return complaintAbout(
        [bytes](NSPropertyListMutabilityOptions option) { return readPropertyListBinary(bytes, option); }, false);
}

std::string complaintAboutOldStyle(std::span<std::byte const> bytes) {
    return complaintAbout(
        [bytes](NSPropertyListMutabilityOptions option) { return readText(bytes, option, readPropertyListOldStyle); },
        false);
}

} // namespace mac::fuzz
