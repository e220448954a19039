#include "LaunchKit/JsonText.h"

namespace quorvel {

std::string escapingSlashes(const std::string& json) {
    std::string result;
    result.reserve(json.size() + json.size() / 16);
    for (const char character : json) {
        // Slashes stand only inside strings, where JSON allows them to be escaped.
        if (character == '/') {
            result.push_back('\\');
        }
        result.push_back(character);
    }
    return result;
}

} // namespace quorvel
