#pragma once

namespace mac {

// Makes every class of this room known by name, once. Without it a class is known from its first use on. Any thread.
void registerFoundationClasses();

} // namespace mac
