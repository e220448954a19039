#pragma once

#include "QuorvelApp/model/Continuation.h"

#include <QCoreApplication>
#include <QFuture>
#include <QObject>
#include <QPromise>
#include <QThreadPool>

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace quorvel {

/// How urgently the user waits for the result.
enum class TaskPriority { userInitiated, utility };

/// Runs work off the main thread and delivers its result to the main thread: the only place where
/// threads interact.
class BackgroundTasks {
public:
    BackgroundTasks() = default;
    BackgroundTasks(const BackgroundTasks&) = delete;
    BackgroundTasks& operator=(const BackgroundTasks&) = delete;
    virtual ~BackgroundTasks() = default;

    /// Runs `work`, which does not throw, on another thread. Returns at once.
    virtual void start(TaskPriority priority, std::function<void()> work) = 0;

    /// Runs `work` at that priority, then `then` with its result on `context`'s thread, unless
    /// `context` no longer exists. Returns the future of what `then` returns; its `result()` throws
    /// what either of them threw.
    template<typename Work, typename Then>
    auto detached(TaskPriority priority, QObject* context, Work work, Then then) {
        using Result = std::invoke_result_t<Work>;
        auto promise = std::make_shared<QPromise<Result>>();
        auto outcome = continued(promise->future(), context, std::move(then));
        promise->start();
        start(priority, [promise = std::move(promise), work = std::move(work)]() mutable {
            deliver(std::move(promise), attempted(work));
        });
        return outcome;
    }

private:
    template<typename Result>
    struct Attempt {
        std::optional<Result> result{};
        std::exception_ptr failure{};
    };

    template<typename Work>
    static auto attempted(const Work& work) {
        Attempt<std::invoke_result_t<Work>> attempt;
        try {
            attempt.result = work();
        } catch (...) {
            attempt.failure = std::current_exception();
        }
        return attempt;
    }

    // The promise stays on the main thread: in some versions of Qt, it is unsafe for one thread to
    // run a future's continuation while another releases the future.
    template<typename Result>
    static void deliver(std::shared_ptr<QPromise<Result>> promise, Attempt<Result> attempt) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [promise = std::move(promise), attempt = std::move(attempt)]() mutable {
                if (attempt.failure) {
                    promise->setException(attempt.failure);
                } else {
                    promise->addResult(std::move(*attempt.result));
                }
                promise->finish();
            },
            Qt::QueuedConnection);
    }
};

/// Two thread pools, one for each priority.
class ThreadPoolTasks final : public BackgroundTasks {
public:
    ThreadPoolTasks();
    /// Waits for user-initiated work, so that nothing is left half-written; utility work that has
    /// not started is dropped.
    ~ThreadPoolTasks() override;

    void start(TaskPriority priority, std::function<void()> work) override;

private:
    QThreadPool userInitiated_;
    QThreadPool utility_;
};

} // namespace quorvel
