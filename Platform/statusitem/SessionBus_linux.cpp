#include "Platform/statusitem/SessionBus_linux.h"

#include "Platform/homes/SessionBusAddress.h"

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace quorvel {
namespace {

// Cancels a connection that takes too long.
class Deadline {
public:
    Deadline() : thread_([this] { run(); }) {}
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;
    ~Deadline() {
        {
            const std::lock_guard lock(mutex_);
            isOver_ = true;
        }
        change_.notify_one();
        thread_.join();
    }

    [[nodiscard]] GCancellable* cancellable() const { return cancellable_.get(); }

private:
    void run() {
        std::unique_lock lock(mutex_);
        if (!change_.wait_for(lock, std::chrono::seconds(2), [this] { return isOver_; })) {
            g_cancellable_cancel(cancellable_.get());
        }
    }

    ObjectRef<GCancellable> cancellable_{g_cancellable_new()};
    std::mutex mutex_{};
    std::condition_variable change_{};
    bool isOver_ = false;
    std::thread thread_;
};

} // namespace

ObjectRef<GDBusConnection> connectToSessionBus() {
    const std::optional<std::string> address = sessionBusAddress(currentEnvironment());
    if (!address) {
        return nullptr;
    }
    ::setenv(sessionBusVariable, address->c_str(), 1);
    const Deadline deadline;
    return ObjectRef<GDBusConnection>(g_dbus_connection_new_for_address_sync(
        address->c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, deadline.cancellable(), nullptr));
}

} // namespace quorvel
