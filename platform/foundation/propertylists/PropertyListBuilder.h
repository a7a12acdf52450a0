#pragma once

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/foundation/propertylists/PropertyListLimits.h"
#include <optional>
#include <vector>

namespace mac {

// Makes the objects of a property list, mutable ones where the option says so.
class PropertyListObjects {
public:
    explicit PropertyListObjects(NSPropertyListMutabilityOptions option) : m_option(option) {}

    bool makesMutableContainers() const { return m_option != NSPropertyListImmutable; }
    bool makesMutableLeaves() const { return m_option == NSPropertyListMutableContainersAndLeaves; }

    NSString string(std::u16string_view units) const;
    NSData data(std::span<std::byte const> bytes) const;
    NSArray array(std::vector<id> objects) const;
    // As many keys as values. Of equal keys the last one's value stays.
    NSDictionary dictionary(std::vector<NSString> const& keys, std::vector<id> const& values) const;

private:
    NSPropertyListMutabilityOptions m_option;
};

// Builds a property list from its parts in the order in which text names them. Each step answers why it cannot be, or
// an empty text; the limits are kept here, without recursion.
class PropertyListBuilder {
public:
    explicit PropertyListBuilder(NSPropertyListMutabilityOptions option) : m_objects(option) {}

    enum class Container { None, Array, Dictionary };
    // The innermost open container.
    Container container() const;
    // The innermost open container is a dictionary whose last key has no value yet.
    bool awaitsValue() const;
    // The number of open containers.
    std::size_t depth() const { return m_open.size(); }
    bool isComplete() const { return m_root != nil && m_open.empty(); }
    id const& root() const { return m_root; }

    std::string_view begin(Container begun);
    // A dictionary that replace answers an object for is that object; null: every dictionary stays one.
    std::string_view end(id (*replace)(NSDictionary const& dictionary) = nullptr);
    std::string_view addKey(std::u16string_view key);
    std::string_view addString(std::u16string_view string);
    std::string_view addData(std::span<std::byte const> data);
    // A number, a date or an identifier.
    std::string_view addValue(id const& value, std::size_t contents = 0);

private:
    struct Open {
        Container container;
        std::vector<NSString> keys{};
        std::vector<id> values{};
    };

    PropertyListObjects m_objects;
    PropertyListBudget m_budget;
    std::vector<Open> m_open;
    id m_root;
};

} // namespace mac
