#include "platform/applescript/additions/StoredValues.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/language/Operation.h"
#include "platform/applescript/runtime/HeapObjects.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/foundation/text/Encodings.h"
#include <gtest/gtest.h>
#include <limits>

namespace mac::applescript::test {

namespace {

std::int32_t problemOfReading(std::string_view bytes, Code type) {
    try {
        storedValueIn(bytes, type);
        return 0;
    } catch (ScriptError const& error) {
        return error.number;
    }
}

std::string formAfterStoring(Value const& value, Code type) {
    std::string const bytes = storedBytes(value, type) + "rest";
    StoredValue const stored = storedValueIn(bytes, type);
    EXPECT_EQ(stored.size + 4, bytes.size());
    return utf8FromUnits(sourceForm(stored.value));
}

TEST(StoredValues, AreBigEndian) {
    EXPECT_EQ(storedBytes(Value::integer(258), codes::IntegerType), std::string("\0\0\1\2", 4));
    EXPECT_EQ(storedBytes(Value::integer(-1), codes::IntegerType), "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(storedBytes(Value::real(-2), codes::RealType), std::string("\xC0\0\0\0\0\0\0\0", 8));
    EXPECT_EQ(storedBytes(Value::boolean(true), codes::BooleanType), "\1");
    EXPECT_EQ(storedBytes(Value::date(1), codes::DateType), std::string("\0\0\0\0\0\0\0\1", 8));
}

TEST(StoredValues, AreReadAsTheyWereWritten) {
    EXPECT_EQ(formAfterStoring(Value::integer(LeastInteger), codes::IntegerType), "-536870912");
    EXPECT_EQ(formAfterStoring(Value::real(0.1), codes::RealType), "0.1");
    EXPECT_EQ(formAfterStoring(Value::boolean(false), codes::BooleanType), "false");
    Value const list = Value::list({Value::text(u"a\nb"), Value::list(), Value::real(2.5), Value::missing()});
    EXPECT_EQ(formAfterStoring(list, codes::ListType), "{\"a\nb\", {}, 2.5, missing value}");
    Value const record = Value::record({{identifierSymbol(u"my key"), list}});
    EXPECT_EQ(formAfterStoring(record, codes::RecordType), "{|my key|:{\"a\nb\", {}, 2.5, missing value}}");
}

TEST(StoredValues, RefuseBytesThatEndTooEarly) {
    EXPECT_EQ(problemOfReading("abc", codes::IntegerType), errors::EndOfFile);
    EXPECT_EQ(problemOfReading("abcdefg", codes::RealType), errors::EndOfFile);
    EXPECT_EQ(problemOfReading("", codes::BooleanType), errors::EndOfFile);
    std::string const list = storedBytes(Value::list({Value::integer(1)}), codes::ListType);
    for (std::size_t size = 0; size < list.size(); ++size)
        EXPECT_EQ(problemOfReading(list.substr(0, size), codes::ListType), errors::EndOfFile) << size;
}

TEST(StoredValues, RefuseBytesOfAnotherForm) {
    EXPECT_EQ(problemOfReading("no list at all", codes::ListType), errors::CorruptData);
    EXPECT_EQ(problemOfReading(storedBytes(Value::record(), codes::RecordType), codes::ListType), errors::CorruptData);
    EXPECT_EQ(problemOfReading("\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF", codes::DateType), errors::CorruptData);
}

} // namespace

} // namespace mac::applescript::test
