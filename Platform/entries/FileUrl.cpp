#include "Platform/entries/FileUrl.h"

#include <charconv>

namespace quorvel {

std::optional<std::string> pathOfFileUrl(std::string_view url) {
    constexpr std::string_view scheme = "file://";
    if (!url.starts_with(scheme)) {
        return std::nullopt;
    }
    url.remove_prefix(scheme.size());
    constexpr std::string_view host = "localhost/";
    if (url.starts_with(host)) {
        url.remove_prefix(host.size() - 1);
    }
    if (!url.starts_with('/') || url.find('#') != std::string_view::npos) {
        return std::nullopt;
    }
    std::string path;
    for (std::size_t index = 0; index < url.size(); ++index) {
        if (url[index] != '%') {
            path.push_back(url[index]);
            continue;
        }
        unsigned byte = 0;
        const std::string_view code = url.substr(index + 1, 2);
        const auto [end, error] = std::from_chars(code.data(), code.data() + code.size(), byte, 16);
        if (error != std::errc{} || code.size() != 2 || end != code.data() + 2 || byte == 0) {
            return std::nullopt;
        }
        path.push_back(static_cast<char>(byte));
        index += 2;
    }
    return path;
}

} // namespace quorvel
