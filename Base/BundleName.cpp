#include "Base/BundleName.h"

#include "Base/PathText.h"

namespace quorvel {

bool isAppBundleName(std::string_view name) {
    constexpr std::string_view extension = ".app";
    // A name that begins with its only dot has no extension.
    return name.size() > extension.size() && name.ends_with(extension);
}

std::string bundleFallbackName(const std::filesystem::path& bundle) {
    const std::string name = lastPathComponent(bundle);
    if (name == "/") {
        return {};
    }
    const std::size_t dot = name.rfind('.');
    const bool hasExtension = dot != std::string::npos && dot != 0 && name != "..";
    return name.substr(0, hasExtension ? dot : std::string::npos);
}

} // namespace quorvel
