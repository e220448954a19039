#include "Platform/windows/X11Windows_linux.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <poll.h>

namespace quorvel {
namespace {

// Longer properties are truncated: no desktop has that many windows, no window a class that long.
constexpr std::uint32_t longestProperty = 16384; // in units of four bytes

struct Free {
    void operator()(void* reply) const { std::free(reply); } // NOLINT: the library's replies
};

template<typename Reply>
using ReplyPtr = std::unique_ptr<Reply, Free>;

ReplyPtr<xcb_get_property_reply_t> property(xcb_connection_t* connection, xcb_window_t window,
                                            xcb_atom_t name) {
    return ReplyPtr<xcb_get_property_reply_t>(
        xcb_get_property_reply(connection,
                               xcb_get_property(connection, 0, window, name,
                                                XCB_GET_PROPERTY_TYPE_ANY, 0, longestProperty),
                               nullptr));
}

} // namespace

void X11Windows::Disconnect::operator()(xcb_connection_t* connection) const {
    xcb_disconnect(connection);
}

X11Windows::X11Windows(xcb_connection_t* connection, std::uint32_t root)
    : connection_(connection),
      root_(root) {}

std::optional<X11Windows> X11Windows::connect() {
    int number = 0;
    std::unique_ptr<xcb_connection_t, Disconnect> connection(xcb_connect(nullptr, &number));
    if (xcb_connection_has_error(connection.get()) != 0) {
        return std::nullopt;
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection.get()));
    for (; screens.rem > 1 && number > 0; --number) {
        xcb_screen_next(&screens);
    }
    if (screens.rem == 0) {
        return std::nullopt;
    }
    const std::uint32_t root = screens.data->root;
    return X11Windows(connection.release(), root);
}

std::uint32_t X11Windows::atom(const char* name) const {
    const ReplyPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection_.get(),
        xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::vector<std::uint32_t> X11Windows::numbers(std::uint32_t window, const char* name) const {
    const auto reply = property(connection_.get(), window, atom(name));
    if (!reply || reply->format != 32) {
        return {};
    }
    std::vector<std::uint32_t> result(
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / 4);
    if (!result.empty()) {
        std::memcpy(result.data(), xcb_get_property_value(reply.get()), result.size() * 4);
    }
    return result;
}

std::string X11Windows::text(std::uint32_t window, std::uint32_t name) const {
    const auto reply = property(connection_.get(), window, name);
    if (!reply || reply->format != 8) {
        return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

bool X11Windows::isOfDesktop(std::uint32_t window) const {
    const std::vector<std::uint32_t> types = numbers(window, "_NET_WM_WINDOW_TYPE");
    const std::uint32_t dock = atom("_NET_WM_WINDOW_TYPE_DOCK");
    const std::uint32_t desktop = atom("_NET_WM_WINDOW_TYPE_DESKTOP");
    return std::any_of(types.begin(), types.end(),
                       [&](std::uint32_t type) { return type == dock || type == desktop; });
}

X11Window X11Windows::describe(std::uint32_t window) const {
    X11Window described{.id = window};
    if (const auto pids = numbers(window, "_NET_WM_PID"); !pids.empty()) {
        described.pid = static_cast<pid_t>(pids.front());
    }
    // Two strings, each with a NUL after it.
    const std::string both = text(window, XCB_ATOM_WM_CLASS);
    const std::size_t end = std::min(both.find('\0'), both.size());
    described.instance = both.substr(0, end);
    const std::string second = both.substr(std::min(end + 1, both.size()));
    described.className = second.substr(0, second.find('\0'));
    described.desktopFile = text(window, atom("_KDE_NET_WM_DESKTOP_FILE"));
    return described;
}

std::vector<X11Window> X11Windows::list() const {
    std::vector<std::uint32_t> windows = numbers(root_, "_NET_CLIENT_LIST_STACKING");
    if (windows.empty()) {
        windows = numbers(root_, "_NET_CLIENT_LIST");
    }
    std::vector<X11Window> result;
    for (auto window = windows.rbegin(); window != windows.rend(); ++window) {
        if (!isOfDesktop(*window)) {
            result.push_back(describe(*window));
        }
    }
    return result;
}

std::uint32_t X11Windows::active() const {
    const auto found = numbers(root_, "_NET_ACTIVE_WINDOW");
    return found.empty() ? 0 : found.front();
}

void X11Windows::setIdentity(std::uint32_t window, const std::string& word) const {
    std::string both = word;
    both.append(1, '\0').append(word).append(1, '\0');
    const auto set = [&](xcb_atom_t name, xcb_atom_t type, const std::string& bytes) {
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window, name, type, 8,
                            static_cast<std::uint32_t>(bytes.size()), bytes.data());
    };
    set(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, both);
    set(atom("_KDE_NET_WM_DESKTOP_FILE"), atom("UTF8_STRING"), word);
    xcb_flush(connection_.get());
}

bool X11Windows::takeEvents() const {
    using Event = std::unique_ptr<xcb_generic_event_t, Free>;
    bool hasTaken = false;
    while (Event(xcb_poll_for_event(connection_.get()))) {
        hasTaken = true;
    }
    return hasTaken;
}

bool X11Windows::waitForChanges(std::chrono::milliseconds limit) const {
    const std::uint32_t wanted = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_.get(), root_, XCB_CW_EVENT_MASK, &wanted);
    xcb_flush(connection_.get());
    // Events that arrived together with a reply are no longer in the socket.
    if (!takeEvents()) {
        pollfd waiting{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
        (void)::poll(&waiting, 1, static_cast<int>(limit.count()));
        (void)takeEvents();
    }
    return xcb_connection_has_error(connection_.get()) == 0;
}

void X11Windows::activate(std::uint32_t window) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom("_NET_ACTIVE_WINDOW");
    // From a pager, at any time. A request that names an application or an old time is only
    // marked in the taskbar by some window managers.
    message.data.data32[0] = 2;
    xcb_send_event(connection_.get(), 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message)); // NOLINT: as the library takes events
    xcb_flush(connection_.get());
}

} // namespace quorvel
