#pragma once

namespace quorvel::testing {

/// Whether the tests were built with a sanitizer that takes memory and makes system calls itself.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isSanitized = false;
#endif
#else
inline constexpr bool isSanitized = false;
#endif

/// Whether that is the thread sanitizer.
#if defined(__SANITIZE_THREAD__)
inline constexpr bool isThreadSanitized = true;
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
inline constexpr bool isThreadSanitized = true;
#else
inline constexpr bool isThreadSanitized = false;
#endif
#else
inline constexpr bool isThreadSanitized = false;
#endif

} // namespace quorvel::testing
