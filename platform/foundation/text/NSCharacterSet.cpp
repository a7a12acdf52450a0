#include "platform/foundation/text/NSCharacterSet.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/text/CharacterSetBody.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/foundation/text/StringBody.h"
#include <algorithm>

namespace mac {

namespace {

struct Characters {
    char32_t first;
    char32_t end;
};

Characters checkedCharacters(NSRange range, char const* message) {
    std::uint64_t const end = std::uint64_t{range.location} + range.length;
    if (end > CharacterMembers::End)
        throw NSInvalidArgumentException(std::string(message) + " the range leaves the characters");
    return {range.location, static_cast<char32_t>(end)};
}

CharacterMembers membersOf(std::u16string_view characters) {
    CharacterMembers members;
    for (std::size_t index = 0; index < characters.size();) {
        char32_t const character = codePointAt(characters, index);
        members.add(character, character + 1);
        index += unitCount(character);
    }
    return members;
}

} // namespace

bool NSCharacterSet::Body::isEqual(id const& other) const {
    if (other.body() == this) return true;
    NSCharacterSet const set = as<NSCharacterSet>(other);
    return set != nil && bodyOf(set)->m_members == m_members;
}

id NSCharacterSet::Body::copy() const {
    if (isKindOf(classOf<NSMutableCharacterSet>())) return adopt<NSCharacterSet>(m_members);
    return id::retain(const_cast<Body*>(this));
}

id NSCharacterSet::Body::mutableCopy() const { return adopt<NSMutableCharacterSet>(m_members); }

ClassDescription NSCharacterSet::describeClass() {
    return {
        .name = "NSCharacterSet",
        .superclass = classOf<NSObject>(),
        .makeBody = &makeEmptyBody<NSCharacterSet>,
        .methods = {method<&NSCharacterSet::invertedSet>("invertedSet"),
                    method<&NSCharacterSet::isSupersetOfSet_>("isSupersetOfSet:"),
                    method<&NSCharacterSet::bitmapRepresentation>("bitmapRepresentation")},
    };
}

NSCharacterSet NSCharacterSet::characterSetWithCharactersInString_(NSString const& characters) {
    requireArgument(characters, "characterSetWithCharactersInString:");
    return adopt<NSCharacterSet>(membersOf(characters.codeUnits()));
}

NSCharacterSet NSCharacterSet::characterSetWithRange_(NSRange range) {
    Characters const characters = checkedCharacters(range, "characterSetWithRange:");
    CharacterMembers members;
    members.add(characters.first, characters.end);
    return adopt<NSCharacterSet>(std::move(members));
}

NSCharacterSet NSCharacterSet::characterSetWithBitmapRepresentation_(NSData const& data) {
    requireArgument(data, "characterSetWithBitmapRepresentation:");
    CharacterMembers members;
    std::span<std::byte const> rest = data.span();
    for (std::size_t plane = 0; !rest.empty();) {
        std::vector<std::byte> bits(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(std::min(
                                                                     rest.size(), CharacterMembers::PlaneBytes)));
        rest = rest.subspan(bits.size());
        bits.resize(CharacterMembers::PlaneBytes);
        if (plane < CharacterMembers::PlaneCount) members.setBytesOfPlane(plane, bits.data());
        if (rest.empty()) break;
        plane = std::to_integer<std::size_t>(rest.front());
        rest = rest.subspan(1);
    }
    return adopt<NSCharacterSet>(std::move(members));
}

bool NSCharacterSet::characterIsMember_(unichar character) const { return longCharacterIsMember_(character); }

bool NSCharacterSet::longCharacterIsMember_(UTF32Char character) const {
    return *this != nil && character < CharacterMembers::End && bodyOf(*this)->members().contains(character);
}

bool NSCharacterSet::hasMemberInPlane_(std::uint8_t plane) const {
    return *this != nil && plane < CharacterMembers::PlaneCount && bodyOf(*this)->members().hasPlane(plane);
}

bool NSCharacterSet::isSupersetOfSet_(NSCharacterSet const& other) const {
    if (*this == nil) return false;
    return other == nil || bodyOf(*this)->members().holdsAllOf(bodyOf(other)->members());
}

NSCharacterSet NSCharacterSet::invertedSet() const {
    if (*this == nil) return nil;
    CharacterMembers members = bodyOf(*this)->members();
    members.invert();
    return adopt<NSCharacterSet>(std::move(members));
}

NSData NSCharacterSet::bitmapRepresentation() const {
    if (*this == nil) return nil;
    CharacterMembers const& members = bodyOf(*this)->members();
    std::vector<std::byte> bytes = members.bytesOfPlane(0);
    for (std::size_t plane = 1; plane < CharacterMembers::PlaneCount; ++plane) {
        if (!members.hasPlane(plane)) continue;
        bytes.push_back(static_cast<std::byte>(plane));
        std::vector<std::byte> const bits = members.bytesOfPlane(plane);
        bytes.insert(bytes.end(), bits.begin(), bits.end());
    }
    return NSData::dataWithBytes(bytes);
}

ClassDescription NSMutableCharacterSet::describeClass() {
    return {
        .name = "NSMutableCharacterSet",
        .superclass = classOf<NSCharacterSet>(),
        .makeBody = &makeEmptyBody<NSMutableCharacterSet>,
        .methods = {method<&NSMutableCharacterSet::addCharactersInString_>("addCharactersInString:"),
                    method<&NSMutableCharacterSet::removeCharactersInString_>("removeCharactersInString:"),
                    method<&NSMutableCharacterSet::formUnionWithCharacterSet_>("formUnionWithCharacterSet:"),
                    method<&NSMutableCharacterSet::formIntersectionWithCharacterSet_>(
                        "formIntersectionWithCharacterSet:"),
                    method<&NSMutableCharacterSet::invert>("invert")},
    };
}

void NSMutableCharacterSet::addCharactersInRange_(NSRange range) const {
    if (*this == nil) return;
    Characters const characters = checkedCharacters(range, "addCharactersInRange:");
    bodyOf(*this)->members().add(characters.first, characters.end);
}

void NSMutableCharacterSet::removeCharactersInRange_(NSRange range) const {
    if (*this == nil) return;
    Characters const characters = checkedCharacters(range, "removeCharactersInRange:");
    bodyOf(*this)->members().remove(characters.first, characters.end);
}

void NSMutableCharacterSet::addCharactersInString_(NSString const& characters) const {
    if (*this == nil) return;
    requireArgument(characters, "addCharactersInString:");
    bodyOf(*this)->members().unite(membersOf(characters.codeUnits()));
}

void NSMutableCharacterSet::removeCharactersInString_(NSString const& characters) const {
    if (*this == nil) return;
    requireArgument(characters, "removeCharactersInString:");
    CharacterMembers others = membersOf(characters.codeUnits());
    others.invert();
    bodyOf(*this)->members().intersect(others);
}

void NSMutableCharacterSet::formUnionWithCharacterSet_(NSCharacterSet const& other) const {
    if (*this == nil) return;
    requireArgument(other, "formUnionWithCharacterSet:");
    bodyOf(*this)->members().unite(bodyOf(other)->members());
}

void NSMutableCharacterSet::formIntersectionWithCharacterSet_(NSCharacterSet const& other) const {
    if (*this == nil) return;
    requireArgument(other, "formIntersectionWithCharacterSet:");
    bodyOf(*this)->members().intersect(bodyOf(other)->members());
}

void NSMutableCharacterSet::invert() const {
    if (*this != nil) bodyOf(*this)->members().invert();
}

} // namespace mac
