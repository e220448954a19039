#include "Base/UnsafeText.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace quorvel {
namespace {

// Not taken from ICU: the runner displays text too, and must not link it.
struct Range {
    char32_t first;
    char32_t last;
};

constexpr std::array<Range, 8> controls{{
    {0x0000, 0x001F},
    {0x007F, 0x009F},
    {0x061C, 0x061C},
    {0x200E, 0x200F},
    {0x2028, 0x202E},
    {0x2066, 0x2069},
    {0xD800, 0xDFFF},
    {0x110000, 0xFFFFFFFF},
}};

// Default-ignorable characters and interlinear annotations.
constexpr std::array<Range, 17> invisible{{
    {0x00AD, 0x00AD},
    {0x034F, 0x034F},
    {0x115F, 0x1160},
    {0x17B4, 0x17B5},
    {0x180B, 0x180F},
    {0x200B, 0x200D},
    {0x2060, 0x2065},
    {0x206A, 0x206F},
    {0x2800, 0x2800},
    {0x3164, 0x3164},
    {0xFE00, 0xFE0F},
    {0xFEFF, 0xFEFF},
    {0xFFA0, 0xFFA0},
    {0xFFF0, 0xFFFB},
    {0x1BCA0, 0x1BCA3},
    {0x1D173, 0x1D17A},
    {0xE0000, 0xE0FFF},
}};

// Arabic and related scripts, those of India and South-East Asia, Mongolian.
constexpr std::array<Range, 6> joining{{
    {0x0600, 0x08FF},
    {0x0900, 0x0DFF},
    {0x0F00, 0x109F},
    {0x1780, 0x18AF},
    {0x1900, 0x1CFF},
    {0xA840, 0xABFF},
}};

constexpr std::array<Range, 5> emoji{{
    {0x20D0, 0x20FF},
    {0x2100, 0x2BFF},
    {0x3030, 0x303D},
    {0x3297, 0x3299},
    {0x1F000, 0x1FAFF},
}};

constexpr std::array<Range, 4> ideographs{{
    {0x2E80, 0x2FDF},
    {0x3400, 0x9FFF},
    {0xF900, 0xFAFF},
    {0x20000, 0x3FFFF},
}};

constexpr char32_t nonJoiner = 0x200C;
constexpr char32_t joiner = 0x200D;
constexpr char32_t emojiSelector = 0xFE0F;
constexpr char32_t blackFlag = 0x1F3F4;
constexpr char32_t cancelTag = 0xE007F;

// The tags that Unicode recommends after a black flag: gbeng, gbsct and gbwls.
constexpr std::array<std::u32string_view, 3> flagTags{
    U"\U000E0067\U000E0062\U000E0065\U000E006E\U000E0067\U000E007F",
    U"\U000E0067\U000E0062\U000E0073\U000E0063\U000E0074\U000E007F",
    U"\U000E0067\U000E0062\U000E0077\U000E006C\U000E0073\U000E007F",
};

constexpr bool isBetween(char32_t scalar, char32_t first, char32_t last) {
    return first <= scalar && scalar <= last;
}

template<std::size_t count>
bool isIn(const std::array<Range, count>& ranges, char32_t scalar) {
    return std::any_of(ranges.begin(), ranges.end(), [&](const Range& range) {
        return isBetween(scalar, range.first, range.last);
    });
}

bool isTag(char32_t scalar) {
    return isBetween(scalar, 0xE0020, 0xE007F);
}

bool hasEmojiForm(char32_t scalar, char32_t afterSelector) {
    constexpr char32_t keycap = 0x20E3;
    const bool key = isBetween(scalar, '0', '9') || scalar == '#' || scalar == '*';
    return isIn(emoji, scalar) || scalar == 0xA9 || scalar == 0xAE ||
           (key && afterSelector == keycap);
}

bool startsFlagTags(char32_t scalar, std::u32string_view following) {
    return std::any_of(flagTags.begin(), flagTags.end(), [&](std::u32string_view tags) {
        return scalar == tags.front() && following.starts_with(tags.substr(1));
    });
}

// Whether a joiner or non-joiner changes the characters around it.
bool changesJoining(char32_t before, char32_t scalar, char32_t next) {
    if (scalar == joiner && (isIn(emoji, before) || before == emojiSelector)) {
        return isIn(emoji, next);
    }
    // A joiner at the end of a word changes the form of the last letter.
    return isIn(joining, before) && !isIn(invisible, before) &&
           (scalar == joiner || isIn(joining, next));
}

bool isMongolianSelector(char32_t scalar) {
    return isBetween(scalar, 0x180B, 0x180F);
}

bool isSelector(char32_t scalar) {
    return isBetween(scalar, 0xFE00, emojiSelector) || isBetween(scalar, 0xE0100, 0xE01EF) ||
           isMongolianSelector(scalar);
}

// Whether the character before a variation selector has the form that it selects.
bool hasSelectedForm(char32_t before, char32_t selector, char32_t next) {
    if (isBetween(selector, 0xFE0E, emojiSelector)) {
        return hasEmojiForm(before, next);
    }
    return isMongolianSelector(selector) ? isBetween(before, 0x1820, 0x18AA)
                                         : isIn(ideographs, before);
}

// Whether an invisible character changes how its neighbors look.
bool hasVisibleEffect(char32_t before, char32_t scalar, std::u32string_view following) {
    const char32_t next = following.empty() ? 0 : following.front();
    if (scalar == joiner || scalar == nonJoiner) {
        return changesJoining(before, scalar, next);
    }
    if (isSelector(scalar)) {
        return hasSelectedForm(before, scalar, next);
    }
    // The first tag was accepted only if the whole sequence is known.
    return before == blackFlag ? startsFlagTags(scalar, following)
                               : isTag(scalar) && isTag(before) && before != cancelTag;
}

} // namespace

bool UnsafeText::isControl(char32_t scalar) noexcept {
    return isIn(controls, scalar);
}

bool UnsafeText::isUnsafeAfter(char32_t before, char32_t scalar,
                               std::u32string_view following) noexcept {
    return isControl(scalar) ||
           (isIn(invisible, scalar) && !hasVisibleEffect(before, scalar, following));
}

} // namespace quorvel
