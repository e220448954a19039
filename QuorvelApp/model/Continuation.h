#pragma once

#include <QFuture>
#include <QObject>
#include <QPointer>

#include <exception>
#include <type_traits>
#include <utility>

namespace quorvel {

/// The failure of a future whose work was given up, since who wanted it no longer exists.
class Abandoned : public std::exception {
public:
    [[nodiscard]] const char* what() const noexcept override { return "no longer wanted"; }
};

/// Calls `then` with the result, or with the future if it takes one, where the future finishes: on
/// the main thread, as all of the models' do. Not if `context` no longer exists by then; the future
/// that is returned fails with `Abandoned`. Some versions of `QFuture::then` with a context take it
/// for granted that it exists. As by that, a future that was cancelled cancels what follows.
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
