#pragma once

#include <exception>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace quorvel {

/// The outcome of background work whose failure the model itself reports, since the future may
/// never be read.
template<typename Result>
struct Outcome {
    std::optional<Result> result{};
    std::string failure{}; ///< for the user, if there is no result
};

/// Returns a function that does `work` and returns its `Outcome`; a `std::exception` becomes the
/// failure.
template<typename Work>
auto capturingErrors(Work work) {
    return [work = std::move(work)]() -> Outcome<std::invoke_result_t<Work>> {
        try {
            return {.result = work()};
        } catch (const std::exception& failure) {
            return {.failure = failure.what()};
        }
    };
}

} // namespace quorvel
