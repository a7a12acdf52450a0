#include "platform/foundation/propertylists/JSONObject.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

TEST(JSONObject, TellsItsMembersByKind) {
    auto const read = JSONObject::read(R"({"a": "\u00e4\n", "b": true, "c": -7, "d": null, "e": [{"f": 0}, {}]})");
    ASSERT_TRUE(read.hasValue());
    JSONObject const& object = read.value();
    EXPECT_EQ(object.text("a"), "ä\n");
    EXPECT_EQ(object.flag("b"), true);
    EXPECT_EQ(object.integer("c"), -7);
    EXPECT_TRUE(object.has("d") && object.isNull("d"));
    auto const elements = object.objects("e");
    ASSERT_TRUE(elements && elements->size() == 2);
    EXPECT_EQ(elements->front().integer("f"), 0);
    EXPECT_FALSE(elements->back().has("f"));
}

TEST(JSONObject, TellsNoMemberOfAnotherKind) {
    auto const read = JSONObject::read(R"({"a": 1, "b": "true", "c": 1.5, "d": 1e30, "e": [1], "f": {}})");
    ASSERT_TRUE(read.hasValue());
    JSONObject const& object = read.value();
    EXPECT_FALSE(object.text("a") || object.flag("b") || object.integer("b") || object.integer("c"));
    EXPECT_FALSE(object.integer("d") || object.objects("e") || object.objects("f") || object.text("missing"));
    EXPECT_FALSE(object.has("missing") || object.isNull("missing") || object.isNull("a"));
}

TEST(JSONObject, HoldsWhole64BitNumbers) {
    auto const read = JSONObject::read(R"({"a": 9007199254740993, "b": 1, "c": -9223372036854775808})");
    ASSERT_TRUE(read.hasValue());
    EXPECT_EQ(read.value().integer("a"), 9007199254740993);
    EXPECT_EQ(read.value().integer("b"), 1);
    EXPECT_EQ(read.value().integer("c"), std::numeric_limits<std::int64_t>::min());
}

TEST(JSONObject, RefusesTextsThatAreNoDocuments) {
    for (std::string const& text : {std::string(), std::string("{"), std::string("[]"), std::string("null"),
                                    std::string("{} {}"), std::string("{\"a\": \"\xff\"}"), std::string("{\"a\": 01}")})
        EXPECT_FALSE(JSONObject::read(text).hasValue()) << text;
    EXPECT_NE(JSONObject::read("{\"a\": }").problem().reason.find("at byte "), std::string::npos);
}

TEST(JSONObject, RefusesDeeperNestingThanItReads) {
    auto const nested = [](std::size_t depth) {
        return "{\"a\": " + std::string(depth, '[') + std::string(depth, ']') + "}";
    };
    EXPECT_TRUE(JSONObject::read(nested(1000)).hasValue());
    EXPECT_FALSE(JSONObject::read(nested(1'000'000)).hasValue());
}

} // namespace
} // namespace mac::test
