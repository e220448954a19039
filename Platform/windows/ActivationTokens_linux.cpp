#include "Platform/windows/ActivationTokens.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPointer>
#include <QWindow>

#include <qpa/qplatformnativeinterface.h>

#include "xdg-activation-v1.h"
#include <wayland-client.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <poll.h>
#include <string_view>

namespace quorvel {

// Remembers the last press and its window: compositors give no token for a release, which is when
// buttons act.
class ActivationTokens::Clicks final : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool isPress =
            event->type() == QEvent::MouseButtonPress || event->type() == QEvent::KeyPress;
        auto* const pressed = isPress ? qobject_cast<QWindow*>(watched) : nullptr;
        QPlatformNativeInterface* const native = QGuiApplication::platformNativeInterface();
        if (pressed != nullptr && native != nullptr) {
            window = pressed;
            serial = static_cast<std::uint32_t>(
                reinterpret_cast<std::uintptr_t>(native->nativeResourceForIntegration("serial")));
        }
        return false;
    }

    QPointer<QWindow> window{};
    std::uint32_t serial = 0;
};

namespace {

constexpr std::chrono::milliseconds patience{250};

template<typename Type, void (*release)(Type*)>
struct Releaser {
    void operator()(Type* object) const { release(object); }
};
template<typename Type, void (*release)(Type*)>
using Owned = std::unique_ptr<Type, Releaser<Type, release>>;

void releaseWrapper(wl_display* wrapper) {
    wl_proxy_wrapper_destroy(wrapper);
}

// Asks the compositor on a separate queue, so that none of Qt's events are handled meanwhile.
class TokenRequest {
public:
    TokenRequest(wl_display* display, wl_seat* seat, wl_surface* surface, std::uint32_t serial)
        : display_(display),
          queue_(wl_display_create_queue(display)),
          wrapper_(static_cast<wl_display*>(wl_proxy_create_wrapper(display))) {
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper_.get()), queue_.get());
        registry_.reset(wl_display_get_registry(wrapper_.get()));
        static constexpr wl_registry_listener globals{
            [](void* self, wl_registry* registry, std::uint32_t name, const char* interface,
               std::uint32_t) {
                if (std::string_view(interface) == xdg_activation_v1_interface.name) {
                    static_cast<TokenRequest*>(self)->activation_.reset(
                        static_cast<xdg_activation_v1*>(
                            wl_registry_bind(registry, name, &xdg_activation_v1_interface, 1)));
                }
            },
            [](void*, wl_registry*, std::uint32_t) {}};
        wl_registry_add_listener(registry_.get(), &globals, this);
        // Answered after all globals: a compositor that has no tokens is not waited for.
        sync_.reset(wl_display_sync(wrapper_.get()));
        static constexpr wl_callback_listener all{[](void* self, wl_callback*, std::uint32_t) {
            static_cast<TokenRequest*>(self)->hasAllGlobals_ = true;
        }};
        wl_callback_add_listener(sync_.get(), &all, this);
        if (!waitFor([this] { return activation_ != nullptr || hasAllGlobals_; }) ||
            activation_ == nullptr) {
            return;
        }
        token_.reset(xdg_activation_v1_get_activation_token(activation_.get()));
        static constexpr xdg_activation_token_v1_listener answers{
            [](void* self, xdg_activation_token_v1*, const char* token) {
                static_cast<TokenRequest*>(self)->answer_ = token;
            }};
        xdg_activation_token_v1_add_listener(token_.get(), &answers, this);
        xdg_activation_token_v1_set_serial(token_.get(), serial, seat);
        xdg_activation_token_v1_set_surface(token_.get(), surface);
        xdg_activation_token_v1_commit(token_.get());
        (void)waitFor([this] { return !answer_.empty(); });
    }

    [[nodiscard]] const std::string& answer() const { return answer_; }

private:
    // A roundtrip would wait without end for a compositor that hangs.
    template<typename Condition>
    [[nodiscard]] bool waitFor(const Condition& isDone) {
        while (!isDone()) {
            if (wl_display_prepare_read_queue(display_, queue_.get()) != 0) {
                if (wl_display_dispatch_queue_pending(display_, queue_.get()) < 0) {
                    return false;
                }
                continue;
            }
            (void)wl_display_flush(display_);
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                end_ - std::chrono::steady_clock::now());
            pollfd events{wl_display_get_fd(display_), POLLIN, 0};
            if (left.count() <= 0 || ::poll(&events, 1, static_cast<int>(left.count())) <= 0) {
                wl_display_cancel_read(display_);
                return false;
            }
            if (wl_display_read_events(display_) < 0) {
                return false;
            }
        }
        return true;
    }

    const std::chrono::steady_clock::time_point end_ = std::chrono::steady_clock::now() + patience;
    wl_display* display_;
    Owned<wl_event_queue, wl_event_queue_destroy> queue_;
    Owned<wl_display, releaseWrapper> wrapper_;
    Owned<wl_registry, wl_registry_destroy> registry_{};
    Owned<wl_callback, wl_callback_destroy> sync_{};
    bool hasAllGlobals_ = false;
    Owned<xdg_activation_v1, xdg_activation_v1_destroy> activation_{};
    Owned<xdg_activation_token_v1, xdg_activation_token_v1_destroy> token_{};
    std::string answer_{};
};

template<typename Type>
Type* resource(QPlatformNativeInterface* native, const char* name) {
    return static_cast<Type*>(native->nativeResourceForIntegration(name));
}

} // namespace

ActivationTokens::ActivationTokens() {
    // Private functions may differ between versions.
    if (QGuiApplication::platformName().startsWith(QLatin1String("wayland")) &&
        std::string_view(qVersion()) == QT_VERSION_STR) {
        clicks_ = std::make_unique<Clicks>();
        QCoreApplication::instance()->installEventFilter(clicks_.get());
    }
}

ActivationTokens::~ActivationTokens() = default;

std::string ActivationTokens::take() const {
    QPlatformNativeInterface* const native =
        clicks_ ? QGuiApplication::platformNativeInterface() : nullptr;
    if (native == nullptr || !clicks_->window) {
        return {};
    }
    auto* const display = resource<wl_display>(native, "wl_display");
    auto* const seat = resource<wl_seat>(native, "wl_seat");
    auto* const surface =
        static_cast<wl_surface*>(native->nativeResourceForWindow("surface", clicks_->window));
    if (display == nullptr || seat == nullptr || surface == nullptr) {
        return {};
    }
    return TokenRequest(display, seat, surface, clicks_->serial).answer();
}

} // namespace quorvel
