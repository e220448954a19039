#include "Presentation/JoinedText.h"

#include <algorithm>
#include <cstddef>

namespace quorvel {

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
    std::string result;
    for (std::size_t index = 0; index < parts.size(); ++index) {
        result += index == 0 ? std::string_view() : separator;
        result += parts[index];
    }
    return result;
}

std::string keyValueLine(const std::string& key, const std::string& value) {
    return std::string(key).append("=").append(value);
}

std::string shortList(const std::vector<std::string>& items, const Translate& translate) {
    constexpr std::size_t longest = 5;
    std::vector<std::string> lines(
        items.begin(),
        items.begin() + static_cast<std::ptrdiff_t>(std::min(items.size(), longest)));
    if (items.size() > longest) {
        lines.push_back(
            filledIn(translate("List", "… and %1 more"), {std::to_string(items.size() - longest)}));
    }
    return joined(lines, "\n");
}

} // namespace quorvel
