#include "coreutils/Strings.h"
#include "pathutils/ExtendedAttributes.h"

#include <iostream>

using namespace mac;

// Prints a fresh identifier, a file's size, and its attributes, one a line in the order of their names.
int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: consumer FILE\n";
        return 2;
    }
    NSString const path = NSString::stringWithUTF8String_(argv[1]);
    NSData const contents = NSData::dataWithContentsOfFile_(path);
    if (contents == nil) {
        std::cerr << "consumer: the file cannot be read\n";
        return 1;
    }
    std::cout << pxUUID().UTF8String() << '\n' << pxFormattedStringWithSize_(contents.length()).UTF8String() << '\n';
    NSDictionary const attributes = pxExtendedAttributes(path);
    NSArray const names = attributes.allKeys().sortedArrayUsingSelector_("compare:");
    for (NSUInteger index = 0; index < names.count(); ++index) {
        NSString const name = as<NSString>(names.objectAtIndex_(index));
        NSData const value = as<NSData>(attributes.objectForKey_(name));
        std::cout << name.UTF8String() << ": " << value.length() << " bytes\n";
    }
    return 0;
}
