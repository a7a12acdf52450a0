#pragma once

namespace benchmarks {

// Tells on standard output how much memory this process holds, in KiB, and ends it at once.
[[noreturn]] void tellMemoryAndEnd();

} // namespace benchmarks
