#include "platform/foundation/propertylists/PropertyListBuilder.h"
#include "platform/foundation/collections/CollectionBodies.h"

namespace mac {

NSString PropertyListObjects::string(std::u16string_view units) const {
    NSString const string = NSString::stringWithCodeUnits(units);
    if (makesMutableLeaves()) return NSMutableString::stringWithString_(string);
    return string;
}

NSData PropertyListObjects::data(std::span<std::byte const> bytes) const {
    NSData const data = NSData::dataWithBytes(bytes);
    if (makesMutableLeaves()) return NSMutableData::dataWithData_(data);
    return data;
}

NSArray PropertyListObjects::array(std::vector<id> objects) const {
    NSArray const array = NSArray::arrayWithVector(std::move(objects));
    if (makesMutableContainers()) return NSMutableArray::arrayWithArray_(array);
    return array;
}

NSDictionary PropertyListObjects::dictionary(std::vector<NSString> const& keys, std::vector<id> const& values) const {
    NSMutableDictionary const dictionary = NSMutableDictionary::dictionary();
    for (std::size_t index = 0; index < keys.size(); ++index)
        dictionary.setObject_forKey_(values[index], keys[index]);
    if (makesMutableContainers()) return dictionary;
    NSDictionary const immutable = adopt<NSDictionary>();
    bodyOf(immutable)->m_entries = std::move(bodyOf(dictionary)->m_entries);
    return immutable;
}

PropertyListBuilder::Container PropertyListBuilder::container() const {
    return m_open.empty() ? Container::None : m_open.back().container;
}

bool PropertyListBuilder::awaitsValue() const {
    return !m_open.empty() && m_open.back().container == Container::Dictionary &&
           m_open.back().keys.size() > m_open.back().values.size();
}

std::string_view PropertyListBuilder::begin(Container begun) {
    if (container() == Container::Dictionary && !awaitsValue()) return "A value in a dictionary has no key";
    if (container() == Container::None && m_root != nil)
        return "There is more than one value outside of all containers";
    if (m_open.size() >= kPropertyListMaximumDepth) return kPropertyListTooDeep;
    m_open.push_back({.container = begun});
    return {};
}

std::string_view PropertyListBuilder::end(id (*replace)(NSDictionary const& dictionary)) {
    if (awaitsValue()) return "The last key of a dictionary has no value";
    Open open = std::move(m_open.back());
    m_open.pop_back();
    if (open.container == Container::Array) return addValue(m_objects.array(std::move(open.values)));
    NSDictionary const dictionary = m_objects.dictionary(open.keys, open.values);
    id const replacement = replace ? replace(dictionary) : id();
    return addValue(replacement == nil ? id(dictionary) : replacement);
}

std::string_view PropertyListBuilder::addKey(std::u16string_view key) {
    if (container() != Container::Dictionary) return "There is a key outside of a dictionary";
    if (awaitsValue()) return "A key in a dictionary has no value";
    if (!m_budget.add(1, key.size() * sizeof(char16_t))) return kPropertyListTooLarge;
    m_open.back().keys.push_back(NSString::stringWithCodeUnits(key));
    return {};
}

std::string_view PropertyListBuilder::addString(std::u16string_view string) {
    return addValue(m_objects.string(string), string.size() * sizeof(char16_t));
}

std::string_view PropertyListBuilder::addData(std::span<std::byte const> data) {
    return addValue(m_objects.data(data), data.size());
}

std::string_view PropertyListBuilder::addValue(id const& value, std::size_t contents) {
    if (container() == Container::Dictionary && !awaitsValue()) return "A value in a dictionary has no key";
    if (container() == Container::None && m_root != nil)
        return "There is more than one value outside of all containers";
    if (!m_budget.add(1, contents)) return kPropertyListTooLarge;
    if (m_open.empty())
        m_root = value;
    else
        m_open.back().values.push_back(value);
    return {};
}

} // namespace mac
