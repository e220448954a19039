// Shows a window as other programs do, and writes its number into a file: x11_window FILE CLASS
// [anonymous] An anonymous window does not say which process it belongs to.
#include <xcb/xcb.h>

#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

class Window {
public:
    Window() : connection_(xcb_connect(nullptr, nullptr)), id_(xcb_generate_id(connection_)) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, id_, screen->root, 0, 0, 200, 100, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
    }
    ~Window() { xcb_disconnect(connection_); }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    void set(const std::string& property, xcb_atom_t type, std::uint8_t format, std::size_t count,
             const void* data) {
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
            xcb_intern_atom_reply(connection_,
                                  xcb_intern_atom(connection_, 0,
                                                  static_cast<std::uint16_t>(property.size()),
                                                  property.c_str()),
                                  nullptr),
            &std::free);
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, id_, atom->atom, type, format,
                            static_cast<std::uint32_t>(count), data);
    }

    void show() {
        xcb_map_window(connection_, id_);
        xcb_flush(connection_);
    }

    // Until the server goes away.
    void stay() {
        while (std::unique_ptr<xcb_generic_event_t, decltype(&std::free)>(
            xcb_wait_for_event(connection_), &std::free)) {
        }
    }

    [[nodiscard]] std::uint32_t id() const { return id_; }

private:
    xcb_connection_t* connection_;
    xcb_window_t id_;
};

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        return 2;
    }
    Window window;
    const std::string name = argv[2];
    const std::string both = name + std::string(1, '\0') + name + std::string(1, '\0');
    window.set("WM_CLASS", XCB_ATOM_STRING, 8, both.size(), both.data());
    window.set("WM_NAME", XCB_ATOM_STRING, 8, name.size(), name.data());
    if (argc < 4 || std::string_view(argv[3]) != "anonymous") {
        const auto pid = static_cast<std::uint32_t>(::getpid());
        window.set("_NET_WM_PID", XCB_ATOM_CARDINAL, 32, 1, &pid);
    }
    window.show();
    std::ofstream(argv[1]) << window.id() << std::endl;
    window.stay();
}
