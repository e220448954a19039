#pragma once

#include "WebHost/OneAnswer.h"

#import <Foundation/Foundation.h>

#include <type_traits>

namespace quorvel {

/// Wraps a handler that the system wants to have called exactly once; it raises an exception
/// otherwise. The handler gets the values of `otherwise` if no answer is ever given.
template <typename... Values>
[[nodiscard]] OneAnswer<Values...> answerOnce(void (^_Nonnull handler)(Values...),
                                              std::type_identity_t<Values>... otherwise) {
    return {[handler](Values... values) { handler(values...); }, otherwise...};
}

} // namespace quorvel
