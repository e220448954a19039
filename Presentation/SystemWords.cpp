#include "Presentation/SystemWords.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace quorvel {
namespace {

struct Replacement {
    std::string_view context;
    std::string_view text;
    const char* words;
};

// Defines `replacements`, made from the catalogue by the build.
#include "SystemCatalogue.inc"

} // namespace

const char* systemWords(const char* context, const char* text) {
    const std::span<const Replacement> all(replacements);
    const auto found = std::find_if(all.begin(), all.end(), [&](const Replacement& each) {
        return each.text == text && each.context == context;
    });
    return found == all.end() ? nullptr : found->words;
}

std::string inSystemWords(const char* context, const char* text) {
    const char* words = systemWords(context, text);
    return words == nullptr ? text : words;
}

} // namespace quorvel
