// Internal to the library: not installed, may change in any commit.
//
// The 128-bit product of two 64-bit words: GCC and Clang have it as a type on every 64-bit target.
#pragma once

namespace corvale::internal {

__extension__ using Uint128 = unsigned __int128;

}  // namespace corvale::internal
