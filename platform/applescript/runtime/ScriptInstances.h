#pragma once

#include "platform/applescript/runtime/Evaluator.h"

namespace mac::applescript {

// The tree with the values of its literals.
std::shared_ptr<LoadedTree const> loadedTree(std::shared_ptr<SyntaxTree> tree);

// A script object of the definition in the tree. Its properties are set in their order, by what can be seen where it
// stands: in the frame that runs, if one does. `enclosing` is the script around it; null for the outermost.
Value instantiate(Evaluator& evaluator, ScriptDefinition const& definition,
                  std::shared_ptr<LoadedTree const> const& tree, ScriptObject* enclosing);

} // namespace mac::applescript
