#include "platform/foundation/Selector.h"
#include "platform/foundation/NSString.h"
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_set>

namespace mac {

namespace {

struct HashOfName {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
};

// The names of all selectors. Never destroyed: they may be used until the program's last instruction.
class SelectorNames {
public:
    static SelectorNames& shared() {
        static SelectorNames& names = *std::make_unique<SelectorNames>().release();
        return names;
    }

    std::string const* find(std::string_view name) {
        std::shared_lock const guard(m_lock);
        auto const found = m_names.find(name);
        return found == m_names.end() ? nullptr : &*found;
    }

    std::string const* intern(std::string_view name) {
        if (std::string const* const known = find(name)) return known;
        std::lock_guard const guard(m_lock);
        return &*m_names.emplace(name).first;
    }

private:
    std::shared_mutex m_lock;
    std::unordered_set<std::string, HashOfName, std::equal_to<>> m_names;
};

} // namespace

SEL::SEL(std::string_view name) {
    if (!name.empty()) m_name = SelectorNames::shared().intern(name);
}

SEL SEL::ofKnownName(std::string_view name) {
    SEL selector;
    selector.m_name = SelectorNames::shared().find(name);
    return selector;
}

SEL NSSelectorFromString(NSString name) { return SEL(std::string_view(name.UTF8String())); }

NSString NSStringFromSelector(SEL selector) {
    return selector ? NSString::stringWithUTF8String_(selector.name()) : NSString();
}

} // namespace mac
