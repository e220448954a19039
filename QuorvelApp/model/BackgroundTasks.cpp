#include "QuorvelApp/model/BackgroundTasks.h"

#include <QThread>

#include <algorithm>

namespace quorvel {
namespace {

// A probe occupies its thread for many seconds; other work must not wait for it.
constexpr int fewestUserInitiatedThreads = 4;

} // namespace

ThreadPoolTasks::ThreadPoolTasks() {
    userInitiated_.setMaxThreadCount(
        std::max(fewestUserInitiatedThreads, QThread::idealThreadCount()));
    userInitiated_.setThreadPriority(QThread::NormalPriority);
    utility_.setThreadPriority(QThread::LowPriority);
}

ThreadPoolTasks::~ThreadPoolTasks() {
    utility_.clear();
    utility_.waitForDone();
    userInitiated_.waitForDone();
}

void ThreadPoolTasks::start(TaskPriority priority, std::function<void()> work) {
    (priority == TaskPriority::userInitiated ? userInitiated_ : utility_).start(std::move(work));
}

} // namespace quorvel
