#pragma once

namespace mac {

class NSString;

// Where the file manager learns how people see the name of the item at a path: nil leaves the path's last component.
// The room that knows such names hands the function in when it is registered. The function is called on any thread.
using DisplayNameSource = NSString (*)(NSString const& path);
void setDisplayNameSource(DisplayNameSource source);

} // namespace mac
