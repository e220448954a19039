#pragma once

#include <QFuture>
#include <QObject>
#include <QPointer>

#include <exception>
#include <type_traits>
#include <utility>

namespace quorvel {

/// The failure of a future whose context no longer exists.
class Abandoned : public std::exception {
public:
    [[nodiscard]] const char* what() const noexcept override { return "no longer wanted"; }
};

/// Calls `then` with the result, or with the future if it takes one, on the thread that finishes
/// the future: the main thread for all futures of the models. If `context` no longer exists at that
/// time, the returned future fails with `Abandoned` instead. Some versions of `QFuture::then` with
/// a context assume that the context exists. As with that function, cancelling `future` cancels
/// what follows.
template<typename Result, typename Then>
auto continued(QFuture<Result> future, const QObject* context, Then then) {
    return future.then([context = QPointer<const QObject>(context),
                        then = std::move(then)](QFuture<Result> done) mutable {
        if (!context) {
            throw Abandoned();
        }
        if constexpr (std::is_invocable_v<Then, QFuture<Result>>) {
            return then(done);
        } else {
            return then(done.result());
        }
    });
}

} // namespace quorvel
