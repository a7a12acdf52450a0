#pragma once

#include <string_view>

namespace mac {

// Whether a drawing (SVG) is plain text that names nothing outside of itself: no files, entities, defaults of
// attributes or style sheets, and of embedded images only those in PNG and JPEG. The toolkit's reader opens what a
// drawing names, and holds the caller where that is a pipe. For implementations, any thread.
bool isSelfContainedDrawing(std::string_view drawing);

} // namespace mac
