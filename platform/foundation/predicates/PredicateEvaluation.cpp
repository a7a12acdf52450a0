#include "platform/foundation/collections/CollectionBodies.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/objects/NSNull.h"
#include "platform/foundation/predicates/PredicatePattern.h"
#include "platform/foundation/predicates/PredicateTree.h"
#include <algorithm>
#include <cmath>
#include <optional>

namespace mac {

namespace {

// The null object stands for nil. Neither this nor what follows makes handles where none are needed: their counting is
// what a simple comparison would spend its time on.
id const& normalized(id const& value) {
    static ObjectBody const* const null = NSNull::null().body();
    static id const none;
    return value.body() == null ? none : value;
}

// The value where it lies: an immutable dictionary keeps it. Null for other objects. The key is one without an
// operator.
id const* valueWithin(id const& object, NSString const& key) {
    if (!object.isMemberOfClass_(classOf<NSDictionary>())) return nullptr;
    static id const none;
    HashedEntries::Entry const* const entry = static_cast<NSDictionary::Body*>(object.body())->m_entries.find(key);
    return entry ? &entry->value : &none;
}

// The value, which may be kept in the room that is given.
id const& valueOf(PredicateExpression const& expression, id const& object, id& room) {
    using Kind = PredicateExpression::Kind;
    switch (expression.kind) {
    case Kind::Constant:
        return expression.constant;
    case Kind::Self:
        return object;
    case Kind::KeyPath:
        if (id const* const value = expression.isPlainKey ? valueWithin(object, expression.keyPath) : nullptr)
            return *value;
        return room = expression.isPlainKey ? object.valueForKey_(expression.keyPath)
                                            : object.valueForKeyPath_(expression.keyPath);
    case Kind::Aggregate:
        break;
    }
    std::vector<id> values;
    for (PredicateExpression const& member : expression.members) {
        id value;
        id const& found = valueOf(member, object, value);
        values.push_back(found == nil ? id(NSNull::null()) : found);
    }
    return room = NSArray::arrayWithVector(std::move(values));
}

// The members of an array or set, the values of a dictionary; nothing for any other object.
std::optional<NSArray> membersOf(id const& value) {
    if (NSArray const array = as<NSArray>(value); array != nil) return array;
    if (NSSet const set = as<NSSet>(value); set != nil) return set.allObjects();
    if (NSDictionary const dictionary = as<NSDictionary>(value); dictionary != nil) return dictionary.allValues();
    return {};
}

bool areEqual(id const& first, id const& second, NSUInteger options) {
    if (first == nil || second == nil) return first == nil && second == nil;
    if (options != 0) {
        NSString const text = as<NSString>(first);
        NSString const other = as<NSString>(second);
        if (text != nil && other != nil)
            return comparableText(text.codeUnits(), options) == comparableText(other.codeUnits(), options);
    }
    return first.isEqual_(second);
}

// nullopt for values without an order: nil, NaN, and objects of different kinds.
std::optional<NSComparisonResult> order(id const& first, id const& second, NSUInteger options) {
    if (first == nil || second == nil) return {};
    if (NSNumber const number = as<NSNumber>(first), other = as<NSNumber>(second); number != nil && other != nil) {
        if (std::isnan(number.doubleValue()) || std::isnan(other.doubleValue())) return {};
        return number.compare_(other);
    }
    if (NSString const text = as<NSString>(first), other = as<NSString>(second); text != nil && other != nil)
        return text.compare_options_(other, options);
    if (NSDate const date = as<NSDate>(first), other = as<NSDate>(second); date != nil && other != nil)
        return date.compare_(other);
    if (as<NSString>(first) != nil || as<NSNumber>(first) != nil || as<NSDate>(first) != nil) return {};
    if (!isSame(first.class_(), second.class_()) || !first.respondsToSelector_("compare:")) return {};
    NSNumber const result = as<NSNumber>(first.performSelector_withObject_("compare:", second));
    if (result == nil) return {};
    return static_cast<NSComparisonResult>(result.intValue());
}

bool isOrdered(PredicateOperator operation, id const& first, id const& second, NSUInteger options) {
    std::optional<NSComparisonResult> const found = order(first, second, options);
    if (!found) return false;
    switch (operation) {
    case PredicateOperator::Less:
        return *found < 0;
    case PredicateOperator::LessOrEqual:
        return *found <= 0;
    case PredicateOperator::Greater:
        return *found > 0;
    default:
        return *found >= 0;
    }
}

bool isBetween(id const& value, id const& bounds, NSUInteger options) {
    NSArray const list = as<NSArray>(bounds);
    if (list.count() != 2) throw NSInvalidArgumentException("BETWEEN needs a list of two values");
    return isOrdered(PredicateOperator::GreaterOrEqual, value, normalized(list.objectAtIndex_(0)), options) &&
           isOrdered(PredicateOperator::LessOrEqual, value, normalized(list.objectAtIndex_(1)), options);
}

bool matchesPattern(std::u16string_view text, NSString const& pattern, PredicateNode const& node) {
    return node.pattern ? node.pattern->matches(text) : PredicatePattern(pattern, node.options).matches(text);
}

// Nothing ever contains the empty string, and nothing begins or ends with it.
bool isFound(PredicateOperator operation, std::u16string_view text, std::u16string_view part) {
    if (operation == PredicateOperator::Like) return matchesWildcards(text, part);
    if (part.empty()) return false;
    if (operation == PredicateOperator::BeginsWith) return text.starts_with(part);
    if (operation == PredicateOperator::EndsWith) return text.ends_with(part);
    return text.find(part) != std::u16string_view::npos;
}

bool isTextMatch(PredicateOperator operation, id const& left, id const& right, PredicateNode const& node) {
    NSString const text = as<NSString>(left);
    NSString const part = as<NSString>(right);
    if (text == nil || part == nil) return false;
    if (operation == PredicateOperator::Matches) return matchesPattern(text.codeUnits(), part, node);
    if (node.options == 0) return isFound(operation, text.codeUnits(), part.codeUnits());
    if (operation == PredicateOperator::Contains)
        return containsComparable(text.codeUnits(), part.codeUnits(), node.options);
    return isFound(operation, comparableText(text.codeUnits(), node.options),
                   comparableText(part.codeUnits(), node.options));
}

// Whether the collection has the value, or the text that stands in its place contains it.
bool holdsMember(id const& collection, id const& value, PredicateNode const& node) {
    std::optional<NSArray> const members = membersOf(collection);
    if (!members) return isTextMatch(PredicateOperator::Contains, collection, value, node);
    if (NSSet const set = as<NSSet>(collection); set != nil && value != nil && node.options == 0)
        return set.containsObject_(value);
    return std::ranges::any_of(*members,
                               [&](id const& member) { return areEqual(value, normalized(member), node.options); });
}

bool compare(PredicateNode const& node, id const& left, id const& right) {
    switch (node.operation) {
    case PredicateOperator::Equal:
        return areEqual(left, right, node.options);
    case PredicateOperator::NotEqual:
        return !areEqual(left, right, node.options);
    case PredicateOperator::In:
        return holdsMember(right, left, node);
    case PredicateOperator::Contains:
        return holdsMember(left, right, node);
    case PredicateOperator::Between:
        return isBetween(left, right, node.options);
    case PredicateOperator::Less:
    case PredicateOperator::LessOrEqual:
    case PredicateOperator::Greater:
    case PredicateOperator::GreaterOrEqual:
        return isOrdered(node.operation, left, right, node.options);
    default:
        return isTextMatch(node.operation, left, right, node);
    }
}

bool evaluateComparison(PredicateNode const& node, id const& object) {
    id leftRoom;
    id rightRoom;
    id const& left = normalized(valueOf(node.left, object, leftRoom));
    id const& right = normalized(valueOf(node.right, object, rightRoom));
    if (node.modifier == PredicateModifier::Direct) return compare(node, left, right);
    std::optional<NSArray> const members = membersOf(left);
    // A missing collection has no members.
    if (!members && left != nil)
        throw NSInvalidArgumentException("ANY, ALL and NONE need a collection on their left, not " +
                                         std::string(left.class_().name()));
    auto const holds = [&](id const& member) { return compare(node, normalized(member), right); };
    NSArray const all = members.value_or(nil);
    switch (node.modifier) {
    case PredicateModifier::All:
        return std::ranges::all_of(all, holds);
    case PredicateModifier::None:
        return std::ranges::none_of(all, holds);
    default:
        return std::ranges::any_of(all, holds);
    }
}

} // namespace

bool evaluatePredicate(PredicateNode const& node, id const& object) {
    auto const holds = [&](PredicateNode const& operand) { return evaluatePredicate(operand, object); };
    switch (node.kind) {
    case PredicateNode::Kind::Always:
        return true;
    case PredicateNode::Kind::Never:
        return false;
    case PredicateNode::Kind::Not:
        return !holds(node.operands.front());
    case PredicateNode::Kind::And:
        return std::ranges::all_of(node.operands, holds);
    case PredicateNode::Kind::Or:
        return std::ranges::any_of(node.operands, holds);
    case PredicateNode::Kind::Comparison:
        break;
    }
    return evaluateComparison(node, object);
}

} // namespace mac
