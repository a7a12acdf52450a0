#include "platform/applescript/language/ScriptParser.h"
#include "platform/foundation/text/Encodings.h"
#include <gtest/gtest.h>

namespace mac::applescript::test {

namespace {

std::string bodyText(SyntaxTree const& tree, ScriptDefinition const& script) {
    return utf8FromUnits(tree.source.substr(script.body.start, script.body.end - script.body.start));
}

TEST(ScriptParser, ATreeKeepsItsSourceAndTheBodiesOfItsScripts) {
    std::u16string const source = u"set x to 1\nscript outer\n  property n : 1\n  script inner\n    on f()\n    end f\n"
                                  u"  end script\nend script\nouter";
    std::shared_ptr<SyntaxTree> const tree = ScriptParser(source, nullptr).parse();
    EXPECT_EQ(tree->source, source);
    ASSERT_EQ(tree->scripts.size(), 3U);
    EXPECT_EQ(bodyText(*tree, *tree->top), utf8FromUnits(source));
    EXPECT_EQ(bodyText(*tree, tree->scripts[1]),
              "\n  property n : 1\n  script inner\n    on f()\n    end f\n  end script\n");
    EXPECT_EQ(bodyText(*tree, tree->scripts[2]), "\n    on f()\n    end f\n  ");
}

TEST(ScriptParser, ABodyBeginsWithTheEndOfTheLineOfItsName) {
    std::shared_ptr<SyntaxTree> const tree = ScriptParser(u"script\nend script", nullptr).parse();
    EXPECT_EQ(bodyText(*tree, tree->scripts[1]), "\n");
    std::shared_ptr<SyntaxTree> const nothing = ScriptParser(u"", nullptr).parse();
    EXPECT_EQ(bodyText(*nothing, *nothing->top), "");
}

TEST(ScriptParser, ABodyParsesAsAScriptOfItsOwn) {
    std::shared_ptr<SyntaxTree> const tree =
        ScriptParser(u"script s\nproperty n : 2\non f(x)\nreturn x + n\nend f\nend script", nullptr).parse();
    ScriptDefinition const& body = tree->scripts[1];
    std::u16string const text = tree->source.substr(body.body.start, body.body.end - body.body.start);
    std::shared_ptr<SyntaxTree> const again = ScriptParser(text, nullptr).parse();
    EXPECT_EQ(again->top->properties.size(), body.properties.size());
    EXPECT_EQ(again->top->handlers.size(), body.handlers.size());
}

} // namespace

} // namespace mac::applescript::test
