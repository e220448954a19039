#include "Presentation/JoinedText.h"

namespace quorvel {

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
    std::string result;
    for (std::size_t index = 0; index < parts.size(); ++index) {
        result += index == 0 ? std::string_view() : separator;
        result += parts[index];
    }
    return result;
}

} // namespace quorvel
