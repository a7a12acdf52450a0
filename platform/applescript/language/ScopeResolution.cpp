#include "platform/applescript/language/ScopeResolution.h"
#include <algorithm>
#include <unordered_map>

namespace mac::applescript {

namespace {

bool contains(std::vector<Symbol> const& symbols, Symbol name) {
    return std::ranges::any_of(symbols, [&](Symbol symbol) { return isSameName(symbol, name); });
}

std::uint32_t topLevelIndex(SyntaxTree& tree, Symbol name) {
    std::vector<Symbol>& variables = tree.top->variables;
    auto const found = std::ranges::find_if(variables, [&](Symbol known) { return isSameName(known, name); });
    if (found != variables.end()) return static_cast<std::uint32_t>(found - variables.begin());
    variables.push_back(name);
    return static_cast<std::uint32_t>(variables.size() - 1);
}

class BodyResolution {
public:
    BodyResolution(SyntaxTree& tree, BodyScope& body) : m_tree(tree), m_body(body) {}

    void run() {
        for (Symbol const local : m_body.locals)
            localIndex(local);
        for (std::size_t index = 0; index < m_body.names.size(); ++index) {
            auto const inside = std::ranges::find_if(m_body.initials, [&](BodyScope::Initial const& initial) {
                return index >= initial.first && index < initial.end;
            });
            m_innermost = inside == m_body.initials.end() ? m_body.script : inside->script;
            resolve(*m_body.names[index]);
        }
        m_body.handler->localCount = static_cast<std::uint32_t>(m_locals.size());
    }

private:
    std::uint32_t localIndex(Symbol name) {
        return m_locals.emplace(name->canonical, static_cast<std::uint32_t>(m_locals.size())).first->second;
    }

    void resolve(Node& node) {
        bool const isTerm = node.kind == NodeKind::Property && node.a == nullptr;
        if (node.kind != NodeKind::Variable && !isTerm) return;
        Place place = declaredPlace(node.name);
        if (place.kind == Place::Kind::None && isTerm && !contains(m_body.assignedTerms, node.name)) return;
        if (place.kind == Place::Kind::None) place = undeclaredPlace(node.name);
        node.kind = NodeKind::Variable;
        node.place = place;
    }

    Place declaredPlace(Symbol name) {
        if (contains(m_body.locals, name)) return {.kind = Place::Kind::Local, .index = localIndex(name)};
        if (contains(m_body.globals, name))
            return {.kind = Place::Kind::TopLevel, .index = topLevelIndex(m_tree, name)};
        std::uint16_t depth = 0;
        for (ScriptScope const* scope = m_innermost; scope; scope = scope->outer, ++depth) {
            auto const& properties = scope->definition->properties;
            auto const found = std::ranges::find_if(
                properties, [&](auto const& property) { return isSameName(property.first, name); });
            if (found != properties.end())
                return {.kind = Place::Kind::Property,
                        .depth = depth,
                        .index = static_cast<std::uint32_t>(found - properties.begin())};
            if (contains(scope->globals, name))
                return {.kind = Place::Kind::TopLevel, .index = topLevelIndex(m_tree, name)};
        }
        return {};
    }

    Place undeclaredPlace(Symbol name) {
        if (m_body.isTopLevel) return {.kind = Place::Kind::TopLevel, .index = topLevelIndex(m_tree, name)};
        return {.kind = Place::Kind::Local, .index = localIndex(name)};
    }

    SyntaxTree& m_tree;
    BodyScope& m_body;
    ScriptScope const* m_innermost{nullptr};
    std::unordered_map<Symbol, std::uint32_t> m_locals;
};

} // namespace

void resolveNames(SyntaxTree& tree, std::deque<BodyScope>& bodies) {
    for (BodyScope& body : bodies)
        BodyResolution(tree, body).run();
}

} // namespace mac::applescript
