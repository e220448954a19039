#pragma once

#include <functional>
#include <memory>
#include <tuple>
#include <utility>

namespace quorvel {

/// A function that has to be called exactly once in any case: later calls do nothing, and
/// when all copies are gone without a call, it is called with the values that mean a refusal.
template<typename... Values>
class OneAnswer {
public:
    OneAnswer(std::function<void(Values...)> give, Values... otherwise)
        : state_(std::make_shared<State>(std::move(give), std::move(otherwise)...)) {}

    void operator()(Values... values) const {
        if (const auto give = std::exchange(state_->give, nullptr)) {
            give(std::move(values)...);
        }
    }

private:
    struct State {
        State(std::function<void(Values...)> function, Values... values)
            : give(std::move(function)),
              otherwise(std::move(values)...) {}
        State(const State&) = delete;
        State& operator=(const State&) = delete;
        ~State() {
            if (give) {
                std::apply(give, otherwise);
            }
        }

        std::function<void(Values...)> give;
        std::tuple<Values...> otherwise;
    };

    std::shared_ptr<State> state_;
};

} // namespace quorvel
