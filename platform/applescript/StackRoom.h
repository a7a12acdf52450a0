#pragma once

namespace mac::applescript {

// Throws the script error "Stack overflow." when the calling thread's stack is nearly used up. Whatever recurses over a
// script's source or values asks first, so that no nesting ends the program.
void requireStackRoom();

} // namespace mac::applescript
