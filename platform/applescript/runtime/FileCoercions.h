#pragma once

namespace mac::applescript {

// Teaches descriptors of files the way to text, which is their HFS path, and to each other.
void installFileCoercions();

} // namespace mac::applescript
