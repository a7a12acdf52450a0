#include "platform/foundation/objects/Selector.h"
#include "platform/foundation/text/NSString.h"
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace mac {

namespace {

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
        return found == m_names.end() ? nullptr : found->second.get();
    }

    std::string const* intern(std::string_view name) {
        if (std::string const* const known = find(name)) return known;
        std::lock_guard const guard(m_lock);
        auto made = std::make_unique<std::string const>(name);
        // Another thread may have come first; then its name stands.
        return m_names.try_emplace(*made, std::move(made)).first->second.get();
    }

private:
    std::shared_mutex m_lock;
    // By the text of the name itself.
    std::unordered_map<std::string_view, std::unique_ptr<std::string const>> m_names;
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
