#include "platform/spotlight/SearchPlan.h"
#include "platform/foundation/predicates/PredicateTree.h"
#include "platform/spotlight/NSMetadataQuery.h"
#include "platform/system/XDGFolders.h"
#include <string_view>

namespace mac {

namespace {

// The file names that a match can have; nullopt if it can have any.
using Names = std::optional<std::vector<std::string>>;

bool asksForFileName(PredicateExpression const& expression) {
    return expression.kind == PredicateExpression::Kind::KeyPath && expression.keyPath.isEqualToString_(kMDItemFSName);
}

Names namesOfConstant(PredicateExpression const& expression) {
    if (expression.kind != PredicateExpression::Kind::Constant) return std::nullopt;
    NSArray const list = as<NSArray>(expression.constant);
    std::vector<std::string> names;
    for (id const& constant : list == nil ? NSArray::arrayWithObjects_({expression.constant}) : list) {
        NSString const name = as<NSString>(constant);
        std::optional<std::string> bytes = name.fileSystemRepresentation();
        if (name == nil) return std::nullopt;
        if (bytes) names.push_back(std::move(*bytes));
    }
    return names;
}

Names namesOfComparison(PredicateNode const& comparison) {
    bool const isExact = comparison.modifier == PredicateModifier::Direct && comparison.options == 0;
    bool const isEquality = comparison.operation == PredicateOperator::Equal;
    if (!isExact || (!isEquality && comparison.operation != PredicateOperator::In)) return std::nullopt;
    // IN a text asks whether the name is part of it, which is no list of names.
    if (!isEquality && as<NSArray>(comparison.right.constant) == nil) return std::nullopt;
    if (asksForFileName(comparison.left)) return namesOfConstant(comparison.right);
    if (isEquality && asksForFileName(comparison.right)) return namesOfConstant(comparison.left);
    return std::nullopt;
}

Names namesOfTree(PredicateNode const& node);

// A match must satisfy each operand, so the shortest list of any operand holds its name.
Names namesOfAnd(std::vector<PredicateNode> const& operands) {
    Names best;
    for (PredicateNode const& operand : operands) {
        Names names = namesOfTree(operand);
        if (names && (!best || names->size() < best->size())) best = std::move(names);
    }
    return best;
}

Names namesOfOr(std::vector<PredicateNode> const& operands) {
    std::vector<std::string> all;
    for (PredicateNode const& operand : operands) {
        Names const names = namesOfTree(operand);
        if (!names) return std::nullopt;
        all.insert(all.end(), names->begin(), names->end());
    }
    return all;
}

Names namesOfTree(PredicateNode const& node) {
    switch (node.kind) {
    case PredicateNode::Kind::And:
        return namesOfAnd(node.operands);
    case PredicateNode::Kind::Or:
        return namesOfOr(node.operands);
    case PredicateNode::Kind::Comparison:
        return namesOfComparison(node);
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<VolumeWalkRequest> planSearch(NSPredicate const& predicate, NSArray const& scopes) {
    VolumeWalkRequest request;
    // What a bundle is cannot be told without it.
    request.folderInPackages = "Contents";
    if (PredicateNode const* const tree = predicateTree(predicate))
        request.names = namesOfTree(*tree).value_or(request.names);
    for (id const& scope : scopes) {
        NSString const text = as<NSString>(scope);
        std::optional<std::string> const path = text.fileSystemRepresentation();
        if (text.isEqualToString_(NSMetadataQueryLocalComputerScope)) {
            request.roots = localComputerFolders();
            return request;
        }
        if (path && text.isAbsolutePath()) request.roots.push_back(*path);
    }
    if (request.roots.empty()) return std::nullopt;
    return request;
}

} // namespace mac
