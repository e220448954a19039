#pragma once

#include <QFuture>
#include <QObject>
#include <QPromise>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace quorvel {

/// How soon a person waits for the result.
enum class TaskPriority { userInitiated, utility };

/// Runs work off the main thread and brings its result back. The one place where threads meet.
class BackgroundTasks {
public:
    BackgroundTasks() = default;
    BackgroundTasks(const BackgroundTasks&) = delete;
    BackgroundTasks& operator=(const BackgroundTasks&) = delete;
    virtual ~BackgroundTasks() = default;

    /// Runs `work`, which does not throw, on another thread. Returns at once.
    virtual void start(TaskPriority priority, std::function<void()> work) = 0;

    /// Runs `work` at that priority, then `then` with its result on `context`'s thread, unless
    /// `context` is gone by then. What either throws is thrown by the future's `result()`.
    template<typename Work, typename Then>
    auto detached(TaskPriority priority, QObject* context, Work work, Then then) {
        using Result = std::invoke_result_t<Work>;
        auto promise = std::make_shared<QPromise<Result>>();
        auto outcome = promise->future().then(context, std::move(then));
        promise->start();
        start(priority, [promise, work = std::move(work)] { fulfil(*promise, work); });
        return outcome;
    }

private:
    template<typename Result, typename Work>
    static void fulfil(QPromise<Result>& promise, const Work& work) {
        try {
            promise.addResult(work());
        } catch (...) {
            promise.setException(std::current_exception());
        }
        promise.finish();
    }
};

/// Two pools of threads of ours, one for each priority.
class ThreadPoolTasks final : public BackgroundTasks {
public:
    ThreadPoolTasks();
    /// Waits for what a person asked for, so that nothing is left half-written; what has not begun
    /// at utility priority is dropped.
    ~ThreadPoolTasks() override;

    void start(TaskPriority priority, std::function<void()> work) override;

private:
    QThreadPool userInitiated_;
    QThreadPool utility_;
};

} // namespace quorvel
