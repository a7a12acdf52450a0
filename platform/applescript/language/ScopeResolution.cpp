#include "platform/applescript/language/ScopeResolution.h"

namespace mac::applescript {

namespace {

std::uint32_t topLevelIndex(SyntaxTree& tree, Symbol name) {
    std::uint32_t const place = tree.top->variablePlaces.add(name);
    if (place == tree.top->variables.size()) tree.top->variables.push_back(name);
    return place;
}

class BodyResolution {
public:
    BodyResolution(SyntaxTree& tree, BodyScope& body) : m_tree(tree), m_body(body) {}

    void run() {
        m_locals = m_body.locals;
        auto initial = m_body.initials.begin();
        for (std::size_t index = 0; index < m_body.names.size(); ++index) {
            while (initial != m_body.initials.end() && initial->end <= index)
                ++initial;
            bool const isInside = initial != m_body.initials.end() && initial->first <= index;
            m_innermost = isInside ? initial->script : m_body.script;
            resolve(*m_body.names[index]);
        }
        m_body.handler->localCount = m_locals.size();
    }

private:
    void resolve(Expression& expression) {
        if (VariableReference* const variable = expression.as<VariableReference>()) {
            Place const place = declaredPlace(variable->name);
            variable->place = place.kind == Place::Kind::None ? undeclaredPlace(variable->name) : place;
            return;
        }
        // A term, unless the script uses its name for a variable.
        PropertyReference const* const term = expression.as<PropertyReference>();
        if (!term || term->container) return;
        Symbol const name = term->name;
        Place place = declaredPlace(name);
        if (place.kind == Place::Kind::None && !m_body.assignedTerms.contains(name)) return;
        if (place.kind == Place::Kind::None) place = undeclaredPlace(name);
        expression.content = VariableReference{.name = name, .place = place};
    }

    Place declaredPlace(Symbol name) {
        if (m_body.locals.contains(name)) return {.kind = Place::Kind::Local, .index = m_locals.add(name)};
        if (m_body.globals.contains(name)) return {.kind = Place::Kind::TopLevel, .index = topLevelIndex(m_tree, name)};
        std::uint16_t depth = 0;
        for (ScriptScope const* scope = m_innermost; scope; scope = scope->outer, ++depth) {
            if (std::optional<std::uint32_t> const place = scope->definition->propertyPlaces.placeOf(name))
                return {.kind = Place::Kind::Property, .depth = depth, .index = *place};
            if (scope->globals.contains(name))
                return {.kind = Place::Kind::TopLevel, .index = topLevelIndex(m_tree, name)};
        }
        return {};
    }

    Place undeclaredPlace(Symbol name) {
        if (m_body.isTopLevel) return {.kind = Place::Kind::TopLevel, .index = topLevelIndex(m_tree, name)};
        return {.kind = Place::Kind::Local, .index = m_locals.add(name)};
    }

    SyntaxTree& m_tree;
    BodyScope& m_body;
    ScriptScope const* m_innermost{nullptr};
    NameIndex m_locals;
};

} // namespace

void resolveNames(SyntaxTree& tree, std::deque<BodyScope>& bodies) {
    for (BodyScope& body : bodies)
        BodyResolution(tree, body).run();
}

} // namespace mac::applescript
