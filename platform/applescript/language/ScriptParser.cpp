#include "platform/applescript/language/ScriptParser.h"

namespace mac::applescript {

namespace {

// Once nothing in the tree changes its kind any more.
void numberLiterals(SyntaxTree& tree) {
    for (Expression& expression : tree.expressions) {
        Literal* const literal = expression.as<Literal>();
        if (!literal) continue;
        literal->index = static_cast<std::uint32_t>(tree.literals.size());
        tree.literals.push_back(literal);
    }
}

} // namespace

ScriptParser::ScriptParser(std::u16string_view source, TerminologySource applications)
    : ExpressionParser(source), m_applications(applications) {}

std::shared_ptr<SyntaxTree> ScriptParser::parse() {
    m_tree->top = &m_tree->scripts.emplace_back();
    ScriptScope& scope = m_scopes.emplace_back();
    scope.definition = m_tree->top;
    m_tree->top->body.end = static_cast<std::uint32_t>(m_tree->source.size());
    parseScriptBody(scope, true);
    if (current().kind != TokenKind::EndOfScript) expected(u"end of script");
    resolveNames(*m_tree, m_bodies);
    numberLiterals(*m_tree);
    return m_tree;
}

} // namespace mac::applescript
