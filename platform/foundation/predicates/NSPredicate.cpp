#include "platform/foundation/predicates/NSPredicate.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/predicates/PredicateTree.h"

namespace mac {

class NSPredicate::Body : public ObjectBody {
public:
    explicit Body(PredicateNode tree) : m_tree(std::move(tree)) {}

    bool isEqual(id const& other) const override {
        PredicateNode const* const tree = predicateTree(as<NSPredicate>(other));
        return tree && areEqualPredicates(m_tree, *tree);
    }
    // Numbers that are equal may be written differently, so that the text's hash will not do.
    std::uint64_t hash() const override {
        return static_cast<std::uint64_t>(m_tree.kind) * 31 + m_tree.operands.size();
    }
    NSString description() const override { return NSString::stringWithCodeUnits(formatOfPredicate(m_tree)); }
    id copy() const override { return id::retain(const_cast<Body*>(this)); }

    PredicateNode const m_tree;
};

ClassDescription NSPredicate::describeClass() {
    return {
        .name = "NSPredicate",
        .superclass = classOf<NSObject>(),
        .methods =
            {
                method<&NSPredicate::evaluateWithObject_>("evaluateWithObject:"),
                method<&NSPredicate::predicateFormat>("predicateFormat"),
            },
    };
}

NSPredicate NSPredicate::predicateWithArguments(NSString const& format, std::span<FormatArgument const> arguments) {
    return adopt<NSPredicate>(parsePredicate(format, arguments));
}

NSPredicate NSPredicate::predicateWithValue_(BOOL value) {
    using Kind = PredicateNode::Kind;
    return adopt<NSPredicate>(PredicateNode{.kind = static_cast<bool>(value) ? Kind::Always : Kind::Never});
}

bool NSPredicate::evaluateWithObject_(id const& object) const {
    return *this != nil && evaluatePredicate(bodyOf(*this)->m_tree, object);
}

NSString NSPredicate::predicateFormat() const { return description(); }

PredicateNode const* predicateTree(NSPredicate const& predicate) {
    return predicate == nil ? nullptr : &bodyOf(predicate)->m_tree;
}

} // namespace mac
