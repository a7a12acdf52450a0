#pragma once

#include "platform/foundation/NSArray.h"

namespace mac {

// Where an enumerator is in an array; others derive from it and give something
// else.
class NSEnumerator::Body : public ObjectBody {
public:
    Body(NSArray const& array, bool isReverse);

    virtual id next();

private:
    NSArray m_array;
    NSUInteger m_count;
    NSUInteger m_given{0};
    bool m_isReverse;
};

} // namespace mac
