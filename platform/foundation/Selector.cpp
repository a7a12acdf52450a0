#include "platform/foundation/Selector.h"
#include "platform/foundation/NSString.h"
#include <memory>
#include <mutex>
#include <unordered_set>

namespace mac {

SEL::SEL(std::string_view name)
{
    if (name.empty())
        return;
    struct Names {
        std::mutex lock;
        std::unordered_set<std::string> all;
    };
    // Never destroyed: selectors may be used until the program's last instruction.
    static Names& names = *std::make_unique<Names>().release();
    std::lock_guard const guard(names.lock);
    m_name = &*names.all.emplace(name).first;
}

SEL NSSelectorFromString(NSString name)
{
    return SEL(std::string_view(name.UTF8String()));
}

NSString NSStringFromSelector(SEL selector)
{
    return selector ? NSString::stringWithUTF8String_(selector.name()) : NSString();
}

}
