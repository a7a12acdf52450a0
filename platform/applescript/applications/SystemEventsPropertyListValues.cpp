#include "platform/applescript/applications/SystemEvents.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/language/Operation.h"
#include "platform/applescript/runtime/HeapObjects.h"
#include "platform/applescript/runtime/ScriptDate.h"
#include "platform/applescript/runtime/ScriptError.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"
#include <cmath>

namespace mac::applescript {

namespace {

constexpr Code RawData = codes::RawDataType;

// Every whole number up to it is a real of its own.
constexpr long long MostWholeReal = 1LL << 53;

bool isWhole(double number) {
    return number == std::trunc(number) && std::abs(number) <= static_cast<double>(MostWholeReal);
}

// Whole numbers beyond the language's integers are reals in a script.
NSNumber numberOfReal(double number) {
    bool const isInteger = isWhole(number) && (number > MostInteger || number < LeastInteger);
    return isInteger ? NSNumber::numberWithLongLong_(static_cast<long long>(number))
                     : NSNumber::numberWithDouble_(number);
}

Value valueOfInteger(NSNumber const& number) {
    bool const isExact = number.kind() == NSNumber::Kind::Signed && number.longLongValue() <= MostWholeReal &&
                         number.longLongValue() >= -MostWholeReal;
    if (!isExact) throw plainError(errors::NumberTooLarge);
    return Value::number(static_cast<double>(number.longLongValue()));
}

Value valueOfNumber(NSNumber const& number) {
    switch (number.kind()) {
    case NSNumber::Kind::Boolean:
        return Value::boolean(number.boolValue());
    case NSNumber::Kind::Real:
        return Value::real(number.doubleValue());
    default:
        return valueOfInteger(number);
    }
}

NSString stringOf(std::u16string const& units) { return NSString::stringWithCodeUnits(units); }

} // namespace

Value valueOfPropertyList(id const& object) {
    requireStackRoom();
    if (NSDictionary const dictionary = as<NSDictionary>(object); dictionary != nil) {
        std::vector<std::pair<Symbol, Value>> fields;
        for (id const& key : dictionary.allKeys())
            fields.emplace_back(identifierSymbol(as<NSString>(key).codeUnits()),
                                valueOfPropertyList(dictionary.objectForKey_(key)));
        return Value::record(std::move(fields));
    }
    if (NSArray const array = as<NSArray>(object); array != nil) {
        std::vector<Value> items;
        for (id const& item : array)
            items.push_back(valueOfPropertyList(item));
        return Value::list(std::move(items));
    }
    if (NSNumber const number = as<NSNumber>(object); number != nil) return valueOfNumber(number);
    if (NSString const text = as<NSString>(object); text != nil) return Value::text(std::u16string(text.codeUnits()));
    if (NSDate const date = as<NSDate>(object); date != nil)
        return Value::date(dateOfUnixTime(std::llround(date.timeIntervalSince1970())));
    if (NSData const data = as<NSData>(object); data != nil) {
        std::string bytes(reinterpret_cast<char const*>(data.bytes()), data.length());
        return makeObject<DataObject>(ValueKind::Data, RawData, std::move(bytes));
    }
    return Value::missing();
}

id propertyListOfValue(Value const& value) {
    requireStackRoom();
    switch (value.kind()) {
    case ValueKind::Boolean:
        return NSNumber::numberWithBool_(value.asBoolean() ? YES : NO);
    case ValueKind::Integer:
        return NSNumber::numberWithInteger_(value.asInteger());
    case ValueKind::Real:
        return numberOfReal(value.asReal());
    case ValueKind::Text:
        return stringOf(value.units());
    case ValueKind::Date:
        return NSDate::dateWithTimeIntervalSince1970_(static_cast<double>(unixTimeOfDate(value.seconds())));
    case ValueKind::Data:
        return NSData::dataWithBytes_length_(value.data().bytes.data(), value.data().bytes.size());
    case ValueKind::List: {
        NSMutableArray const array = NSMutableArray::arrayWithArray_(NSArray::array());
        for (Value const& item : value.items())
            array.addObject_(propertyListOfValue(item));
        return array;
    }
    case ValueKind::Record: {
        NSMutableDictionary const dictionary = NSMutableDictionary::dictionaryWithCapacity_(value.fields().size());
        for (auto const& [key, field] : value.fields())
            dictionary.setObject_forKey_(propertyListOfValue(field), stringOf(key->spelling));
        return dictionary;
    }
    default:
        throw cannotMake(value, codes::PropertyListItem);
    }
}

} // namespace mac::applescript
