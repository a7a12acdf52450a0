#pragma once

#include "platform/applescript/language/SyntaxTree.h"

namespace mac::applescript {

// What the parser notes about names, until the whole script is known and every variable gets its place.

struct ScriptScope {
    ScriptDefinition* definition{nullptr};
    ScriptScope* outer{nullptr};
    // Declared by statements outside of handlers.
    NameIndex globals{};
};

// A handler, or the statements of a script outside of handlers.
struct BodyScope {
    HandlerDefinition* handler{nullptr};
    ScriptScope* script{nullptr};
    BodyScope* outer{nullptr};
    bool isTopLevel{false};
    NameIndex locals{};
    NameIndex globals{};
    // Variables, and properties without a container that may turn out to be variables.
    std::vector<Expression*> names{};
    // Names of terms that the body assigns to.
    NameIndex assignedTerms{};
    // In order: which of the names stand in what the properties of a script object inside this body start with.
    struct Initial {
        std::size_t first{0};
        std::size_t end{0};
        ScriptScope* script{nullptr};
    };
    std::vector<Initial> initials{};
};

void resolveNames(SyntaxTree& tree, std::deque<BodyScope>& bodies);

} // namespace mac::applescript
