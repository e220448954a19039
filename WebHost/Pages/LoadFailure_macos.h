#pragma once

#import <Foundation/Foundation.h>

#include <string>

namespace quorvel {

/// Why a page can't be loaded.
struct LoadFailure {
    enum class Case { none, offline, certificate };
    Case kind = Case::none; ///< `none` if the load was only cancelled or became a download
    std::string address{};  ///< empty if the system doesn't say
    std::string reason{};   ///< a sentence
};

/// Returns what an error of the engine means.
[[nodiscard]] LoadFailure loadFailureOf(NSError* _Nonnull error);

} // namespace quorvel
