#pragma once

#include "platform/foundation/collections/NSData.h"

namespace mac {

// Objects as data, and back: property lists, and objects of the classes that have a form of archive, such as colours.
// Any thread.
//
// Linux: the data is a binary property list of this system's own, a dictionary with a version. Every version that was
// ever written stays readable.
class NSArchiver : public Handle<NSArchiver, NSObject> {
public:
    using Handle::Handle;

    static ClassDescription describeClass();

    // An archive of the object, which may be nil; nil for an object whose class has no form of archive.
    static NSData archivedDataWithRootObject_(id const& rootObject);
};

class NSUnarchiver : public Handle<NSUnarchiver, NSObject> {
public:
    using Handle::Handle;

    static ClassDescription describeClass();

    // A new object equal to the archived one. Nil for an archive of nil, and for data that is no archive, that another
    // system or a later version wrote, or that contradicts itself.
    static id unarchiveObjectWithData_(NSData const& data);
};

// How the objects of a class are archived; for implementations.
struct ArchivedForm {
    // A property list; nil for an object that cannot be archived.
    id (*listOf)(id const& object){nullptr};
    // Nil for a list that listOf does not answer, whatever it holds.
    id (*objectOf)(id const& list){nullptr};
};
// For the class and those below it. Called before main, see Registration.h.
void addArchivedForm(Class const& cls, ArchivedForm const& form);

} // namespace mac
