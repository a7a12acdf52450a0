#include "tests/consumer/operations/Trial.h"
#include "platform/foundation/numbers/NSNumber.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace consumer {

namespace {

bool s_hasFailed = false;

} // namespace

using namespace mac;

NSString Places::path(std::string_view name) const {
    return NSString::stringWithFileSystemRepresentation_(bytes(name));
}

NSString Places::file(std::string_view name, std::string_view contents) const {
    std::filesystem::create_directories(std::filesystem::path(bytes(name)).parent_path());
    std::ofstream(bytes(name), std::ios::binary) << contents;
    return path(name);
}

NSString Places::folder(std::string_view name) const {
    std::filesystem::create_directories(bytes(name));
    return path(name);
}

void Trial::expect(std::string_view operation, bool isRight) const {
    std::ostream& stream = isRight ? std::cout : std::cerr;
    stream << m_topic << ' ' << operation << (isRight ? "" : ": another answer than expected") << std::endl;
    s_hasFailed = s_hasFailed || !isRight;
}

bool Trial::hasFailed() { return s_hasFailed; }

bool isText(id const& text, std::string_view expected) {
    NSString const string = as<NSString>(text);
    return string != nil && string.UTF8String() == expected;
}

bool areTexts(NSArray const& array, std::initializer_list<std::string_view> texts) {
    if (array == nil || array.count() != texts.size()) return false;
    NSUInteger index = 0;
    return std::ranges::all_of(texts,
                               [&](std::string_view text) { return isText(array.objectAtIndex_(index++), text); });
}

NSArray numbers(std::initializer_list<int> values) {
    NSMutableArray const array = NSMutableArray::array();
    for (int const value : values)
        array.addObject_(NSNumber::numberWithInt_(value));
    return array;
}

} // namespace consumer
