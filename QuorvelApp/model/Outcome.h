#pragma once

#include <exception>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace quorvel {

/// The result of work that may have failed.
template<typename Result>
struct Outcome {
    std::optional<Result> result{};
    std::string failure{}; ///< for the user, if there is no result
};

/// Returns `work` so that it returns an outcome instead of throwing: for background work whose
/// failure is reported by the one who started it, since its future may never be read.
template<typename Work>
auto capturingErrors(Work work) {
    return [work = std::move(work)]() -> Outcome<std::invoke_result_t<const Work&>> {
        try {
            return {.result = work()};
        } catch (const std::exception& failure) {
            return {.failure = failure.what()};
        }
    };
}

} // namespace quorvel
