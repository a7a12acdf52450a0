#pragma once

namespace mac::applescript::precedence {

// The higher binds the tighter.
inline constexpr int Or = 1;
inline constexpr int And = 2;
inline constexpr int Not = 3;
inline constexpr int Equality = 4;
inline constexpr int Relation = 5;
inline constexpr int Coercion = 6;
inline constexpr int Concatenation = 7;
inline constexpr int Sum = 8;
inline constexpr int Product = 9;
inline constexpr int Power = 10;

} // namespace mac::applescript::precedence
