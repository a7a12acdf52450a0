#pragma once

#include "platform/foundation/text/CharacterMembers.h"
#include "platform/foundation/text/NSCharacterSet.h"

namespace mac {

// The members of an immutable or mutable set, for implementations: which of the two it is, its class says.
class NSCharacterSet::Body : public ObjectBody {
public:
    Body() = default;
    explicit Body(CharacterMembers members) : m_members(std::move(members)) {}

    CharacterMembers& members() { return m_members; }

    bool isEqual(id const& other) const override;
    std::uint64_t hash() const override { return m_members.hash(); }
    id copy() const override;
    id mutableCopy() const override;

private:
    CharacterMembers m_members;
};

} // namespace mac
