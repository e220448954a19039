#pragma once

namespace quorvel::testing {

// `isSanitized`: the tests were built with a sanitizer that takes memory and makes system calls
// itself. `isThreadSanitized`: that is the thread sanitizer.
#if defined(__has_feature)
inline constexpr bool isThreadSanitized = __has_feature(thread_sanitizer);
inline constexpr bool isSanitized = isThreadSanitized || __has_feature(address_sanitizer);
#elif defined(__SANITIZE_THREAD__)
inline constexpr bool isThreadSanitized = true;
inline constexpr bool isSanitized = true;
#elif defined(__SANITIZE_ADDRESS__)
inline constexpr bool isThreadSanitized = false;
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isThreadSanitized = false;
inline constexpr bool isSanitized = false;
#endif

} // namespace quorvel::testing
