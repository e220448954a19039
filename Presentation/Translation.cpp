#include "Presentation/Translation.h"

namespace quorvel {

std::string inEnglish(const char*, const char* text) {
    return text;
}

std::string filledIn(std::string_view text, std::initializer_list<std::string_view> arguments) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t number =
            text[at] == '%' && at + 1 < text.size() && text[at + 1] >= '1' && text[at + 1] <= '9'
                ? static_cast<std::size_t>(text[at + 1] - '0')
                : 0;
        if (number == 0 || number > arguments.size()) {
            result += text[at];
        } else {
            result += *(arguments.begin() + (number - 1));
            ++at;
        }
    }
    return result;
}

} // namespace quorvel
