#include "QuorvelApp/model/BackgroundTasks.h"

#include <QThread>

#include <algorithm>

namespace quorvel {
namespace {

// A probe holds its thread for many seconds; others must not wait behind it.
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
