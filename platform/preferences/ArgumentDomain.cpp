#include "platform/preferences/ArgumentDomain.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include <string_view>

namespace mac {

namespace {

bool isNegativeNumber(std::string_view word) {
    if (!word.starts_with('-')) return false;
    word.remove_prefix(1);
    return !word.empty() && word.find_first_not_of("0123456789.") == std::string_view::npos && word != ".";
}

bool isKeyWord(std::string_view word) {
    return word.size() > 1 && word.front() == '-' && word[1] != '-' && !isNegativeNumber(word);
}

bool isValueWord(std::string_view word) { return !word.starts_with('-') || isNegativeNumber(word); }

NSString textOfWord(std::string_view word) { return NSString::stringWithFileSystemRepresentation_(word); }

// A plain word is itself; only what begins as these forms do is read as a property list, so that a word such as "a=b;"
// stays text.
id valueOfWord(std::string const& word) {
    constexpr std::string_view beginnings = "({<\"'";
    NSString const text = textOfWord(word);
    if (word.empty() || beginnings.find(word.front()) == std::string_view::npos) return text;
    id const value = NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
        NSData::dataWithBytes(std::as_bytes(std::span(word))), NSPropertyListImmutable, nullptr, nullptr);
    return value == nil ? id(text) : value;
}

} // namespace

NSDictionary argumentDomain(std::span<std::string const> arguments) {
    NSMutableDictionary const values = NSMutableDictionary::dictionary();
    for (std::size_t index = 1; index + 1 < arguments.size(); ++index) {
        std::string const& word = arguments[index];
        if (word == "--") break;
        if (!isKeyWord(word) || !isValueWord(arguments[index + 1])) continue;
        values.setObject_forKey_(valueOfWord(arguments[index + 1]), textOfWord(std::string_view(word).substr(1)));
        ++index;
    }
    return values;
}

} // namespace mac
