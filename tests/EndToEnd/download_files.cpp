// download_files FOLDER: downloads the addresses in its standard input into the folder, one after
// the other, as a web clone whose user wants all of them.
#include "WebHost/Downloads/DownloadList_linux.h"

#include <iostream>
#include <string>

namespace quorvel {
namespace {

class Downloads {
public:
    explicit Downloads(const std::string& folder)
        : session_(webkit_network_session_new_ephemeral()),
          list_(session_.get(), folder, "0000", callbacks()) {}
    ~Downloads() { g_main_loop_unref(loop_); }
    Downloads(const Downloads&) = delete;
    Downloads& operator=(const Downloads&) = delete;

    void run() {
        next();
        g_main_loop_run(loop_);
    }

private:
    DownloadList::Callbacks callbacks() {
        return {.ask =
                    [](const std::string&, const auto& answered) {
                        answered(true);
                        return true;
                    },
                .changed =
                    [this](const std::string& text, std::optional<double> progress) {
                        if (!progress && !text.empty()) {
                            std::cout << text << std::endl;
                            // Not while the list is still busy with this one.
                            g_idle_add_once(
                                [](gpointer self) { static_cast<Downloads*>(self)->next(); }, this);
                        }
                    }};
    }
    void next() {
        std::string address;
        if (!std::getline(std::cin, address)) {
            g_main_loop_quit(loop_);
            return;
        }
        g_object_unref(webkit_network_session_download_uri(session_.get(), address.c_str()));
    }

    GMainLoop* loop_ = g_main_loop_new(nullptr, FALSE);
    ObjectRef<WebKitNetworkSession> session_;
    DownloadList list_;
};

} // namespace
} // namespace quorvel

int main(int count, char** arguments) {
    if (count != 2) {
        return 1;
    }
    quorvel::Downloads(arguments[1]).run();
    return 0;
}
