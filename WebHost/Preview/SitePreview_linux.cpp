// quorvel-site-preview ADDRESS FOLDER: writes a site's title and icon into the folder, as the files
// "title" and "icon", a PNG file. Knows no user: no cookies, no passwords. What the site sends is
// decoded here, where a fault harms nothing else.
#include "Base/Error.h"
#include "Base/TerminalText.h"
#include "Platform/statusitem/GObjects_linux.h"
#include "WebHost/Links/WebAddress.h"
#include "WebHost/Preview/IconPicture_linux.h"
#include "WebHost/Preview/SiteHead.h"

#include <libsoup/soup.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace quorvel {
namespace {

constexpr std::size_t largestPage = std::size_t{512} << 10U;
constexpr std::size_t largestIcon = std::size_t{1} << 20U;
constexpr int largestSide = 512; // of the icon that is handed over
constexpr std::size_t mostIcons = 3;
constexpr unsigned mostSeconds = 15;
constexpr guint mostRedirects = 5;

// Why a site can't be asked.
class PreviewError : public Error {
public:
    using Error::Error;
};

struct Answer {
    std::string address{}; ///< after redirects
    std::string bytes{};
    bool isWhole = false;
};

// The limits hold even if a site makes the network library misbehave.
void limitThisProcess() {
    constexpr rlim_t memory = rlim_t{2} << 30U;
    constexpr rlim_t seconds = 10;
    const rlimit address{memory, memory};
    const rlimit processor{seconds, seconds};
    const rlimit core{0, 0};
    (void)::setrlimit(RLIMIT_AS, &address);
    (void)::setrlimit(RLIMIT_CPU, &processor);
    (void)::setrlimit(RLIMIT_CORE, &core);
    (void)::alarm(mostSeconds);
}

std::string readUpTo(GInputStream* stream, std::size_t limit, bool& isWhole) {
    std::string bytes;
    std::array<char, 16384> part{};
    gssize length = 0;
    while (bytes.size() <= limit &&
           (length = g_input_stream_read(stream, part.data(), part.size(), nullptr, nullptr)) > 0) {
        bytes.append(part.data(), static_cast<std::size_t>(length));
    }
    isWhole = length == 0 && bytes.size() <= limit;
    bytes.resize(std::min(bytes.size(), limit));
    return bytes;
}

void countRedirect(SoupMessage* message, gpointer count) {
    auto& redirects = *static_cast<guint*>(count);
    if (++redirects > mostRedirects) {
        g_cancellable_cancel(
            static_cast<GCancellable*>(g_object_get_data(G_OBJECT(message), "cancellable")));
    }
}

// Returns what is at the address. Throws `PreviewError` if it can't be fetched.
Answer fetch(SoupSession* session, const std::string& address, std::size_t limit) {
    const ObjectRef<SoupMessage> message(
        isWebAddress(address) ? soup_message_new("GET", address.c_str()) : nullptr);
    if (!message) {
        throw PreviewError("it is not a web address");
    }
    const ObjectRef<GCancellable> cancellable(g_cancellable_new());
    guint redirects = 0;
    g_object_set_data(G_OBJECT(message.get()), "cancellable", cancellable.get());
    g_signal_connect(message.get(), "restarted", G_CALLBACK(countRedirect), &redirects);
    GError* error = nullptr;
    const ObjectRef<GInputStream> stream(
        soup_session_send(session, message.get(), cancellable.get(), &error));
    if (!stream) {
        const std::string reason =
            redirects > mostRedirects ? "it redirects too often" : error->message;
        g_error_free(error);
        throw PreviewError(reason);
    }
    if (soup_message_get_status(message.get()) != SOUP_STATUS_OK) {
        throw PreviewError("the server answers " + std::to_string(static_cast<int>(
                                                       soup_message_get_status(message.get()))));
    }
    Answer answer;
    answer.address = takeText(g_uri_to_string(soup_message_get_uri(message.get())));
    answer.bytes = readUpTo(stream.get(), limit, answer.isWhole);
    return answer;
}

std::string resolved(const std::string& base, const std::string& reference) {
    return takeText(g_uri_resolve_relative(base.c_str(), reference.c_str(),
                                           static_cast<GUriFlags>(SOUP_HTTP_URI_FLAGS), nullptr));
}

std::optional<std::string> fetchIcon(SoupSession* session, const Answer& page,
                                     std::vector<std::string> icons) {
    for (std::string& icon : icons) {
        icon = resolved(page.address, icon);
    }
    std::erase_if(icons, [](const std::string& icon) { return !isWebAddress(icon); });
    icons.resize(std::min(icons.size(), mostIcons));
    icons.push_back(resolved(page.address, "/favicon.ico"));
    for (const std::string& icon : icons) {
        try {
            const Answer answer = fetch(session, icon, largestIcon);
            if (auto png = answer.isWhole ? pngOf(answer.bytes, largestSide) : std::nullopt) {
                return png;
            }
        } catch (const PreviewError&) {
            continue; // perhaps the next one
        }
    }
    return std::nullopt;
}

void write(const std::string& file, const std::string& bytes) {
    std::ofstream stream(file, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) {
        throw PreviewError("what the site sends can’t be written");
    }
}

void preview(const std::string& address, const std::string& folder) {
    constexpr guint idleSeconds = 5;
    const ObjectRef<SoupSession> session(soup_session_new_with_options(
        "timeout", idleSeconds, "idle-timeout", idleSeconds, "user-agent",
        "Mozilla/5.0 (X11; Linux x86_64) AppleWebKit/605.1.15 (KHTML, like Gecko) "
        "Version/60.5 Safari/605.1.15",
        nullptr));
    const Answer page = fetch(session.get(), address, largestPage);
    const SiteHead head = siteHead(page.bytes);
    write(folder + "/title", head.title);
    if (const auto icon = fetchIcon(session.get(), page, head.icons)) {
        write(folder + "/icon", *icon);
    }
}

} // namespace
} // namespace quorvel

int main(int count, char** arguments) {
    constexpr int badUse = 64;
    constexpr int unavailable = 69;
    if (count != 3) {
        std::fputs("quorvel-site-preview ADDRESS FOLDER\n", stderr);
        return badUse;
    }
    quorvel::limitThisProcess();
    try {
        quorvel::preview(arguments[1], arguments[2]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stdout, "%s\n", quorvel::terminalText(error.what(), 300).c_str());
        return unavailable;
    }
}
