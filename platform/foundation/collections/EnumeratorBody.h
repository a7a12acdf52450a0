#pragma once

#include "platform/foundation/collections/NSEnumerator.h"
#include <functional>

namespace mac {

// What gives an enumerator's objects one by one: a function, or a subclass that overrides next.
class NSEnumerator::Body : public ObjectBody {
public:
    Body() = default;
    explicit Body(std::function<id()> next) : m_next(std::move(next)) {}

    // Nil at the end, for good.
    virtual id next() { return m_next ? m_next() : id(); }

private:
    std::function<id()> const m_next;
};

} // namespace mac
