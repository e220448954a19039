#include "Platform/Text.h"

#include <unicode/coll.h>
#include <unicode/regex.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <stdexcept>

namespace quorvel::Text {
namespace {

icu::UnicodeString decoded(std::string_view text) {
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}

std::string encoded(const icu::UnicodeString& text) {
    std::string result;
    text.toUTF8String(result);
    return result;
}

// One collator a thread: making one loads locale data, and a collator is not to be shared
// unguarded.
const icu::Collator& collator() {
    thread_local const std::unique_ptr<icu::Collator> instance = [] {
        UErrorCode status = U_ZERO_ERROR;
        // The "C" locale has no order of names, only one of bytes: Unicode's own order stands in.
        const icu::Locale& users = icu::Locale::getDefault();
        const bool hasOrder = std::string_view(users.getVariant()) != "POSIX";
        std::unique_ptr<icu::Collator> made(
            icu::Collator::createInstance(hasOrder ? users : icu::Locale::getRoot(), status));
        if (U_FAILURE(status)) {
            throw std::runtime_error(u_errorName(status));
        }
        made->setStrength(icu::Collator::SECONDARY);
        return made;
    }();
    return *instance;
}

template<typename Belongs>
std::string trimming(std::string_view text, const Belongs& belongs) {
    const icu::UnicodeString all = decoded(text);
    int32_t start = 0;
    int32_t end = all.length();
    while (start < end && belongs(all.char32At(start))) {
        start = all.moveIndex32(start, 1);
    }
    while (end > start && belongs(all.char32At(all.moveIndex32(end, -1)))) {
        end = all.moveIndex32(end, -1);
    }
    // The bytes in between are given back as they came, well-formed or not.
    const std::size_t head = encoded(all.tempSubStringBetween(0, start)).size();
    const std::size_t tail = encoded(all.tempSubStringBetween(end)).size();
    return std::string(text.substr(head, text.size() - head - tail));
}

bool isBlank(UChar32 scalar) {
    return scalar == '\t' || u_charType(scalar) == U_SPACE_SEPARATOR;
}

bool isBlankOrNewline(UChar32 scalar) {
    return isBlank(scalar) || (scalar >= 0x0A && scalar <= 0x0D) || scalar == 0x85 ||
           scalar == 0x2028 || scalar == 0x2029;
}

// Appends a key whose byte order is the order of names. Equal keys mean equal names.
void appendCollationKey(std::string_view text, std::string& keys) {
    const icu::UnicodeString string = decoded(text);
    const std::size_t start = keys.size();
    // Room for an ordinary name's key, to ask for it once; `resize` lets the text grow in big
    // steps.
    std::size_t room = static_cast<std::size_t>(string.length()) * 2 + 16;
    while (true) {
        keys.resize(start + room);
        auto* key = reinterpret_cast<std::uint8_t*>(keys.data() + start);
        const auto needed = static_cast<std::size_t>(
            collator().getSortKey(string, key, static_cast<std::int32_t>(room)));
        if (needed <= room) {
            keys.resize(start + needed);
            return;
        }
        room = needed;
    }
}

} // namespace

std::vector<std::size_t> sortedOrder(const std::vector<std::string_view>& names) {
    // Names are turned into keys once: comparing them anew in every step would cost far more.
    std::string keys;
    std::vector<std::size_t> ends{0};
    ends.reserve(names.size() + 1);
    for (const std::string_view name : names) {
        appendCollationKey(name, keys);
        ends.push_back(keys.size());
    }
    const auto key = [&](std::size_t index) {
        return std::string_view(keys).substr(ends[index], ends[index + 1] - ends[index]);
    };
    std::vector<std::size_t> order(names.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return key(a) < key(b); });
    return order;
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
    icu::UnicodeString haystack = decoded(text);
    icu::UnicodeString needle = decoded(part);
    if (needle.isEmpty()) {
        return false;
    }
    return haystack.foldCase().indexOf(needle.foldCase()) >= 0;
}

std::string upperCased(std::string_view text) {
    return encoded(decoded(text).toUpper(icu::Locale::getRoot()));
}

std::string lowerCased(std::string_view text) {
    return encoded(decoded(text).toLower(icu::Locale::getRoot()));
}

std::string replacingNonAlphanumerics(std::string_view text, char replacement) {
    const icu::UnicodeString all = decoded(text);
    icu::UnicodeString result;
    for (int32_t index = 0; index < all.length(); index = all.moveIndex32(index, 1)) {
        const UChar32 scalar = all.char32At(index);
        const bool kept = (U_GET_GC_MASK(scalar) & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0;
        result.append(kept ? scalar : static_cast<UChar32>(replacement));
    }
    return encoded(result);
}

std::string trimmingWhitespace(std::string_view text) {
    return trimming(text, isBlank);
}

std::string trimmingWhitespaceAndNewlines(std::string_view text) {
    return trimming(text, isBlankOrNewline);
}

std::optional<std::string> firstCapture(std::string_view pattern, std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString subject = decoded(text);
    icu::RegexMatcher matcher(decoded(pattern), 0, status);
    if (U_FAILURE(status)) {
        throw std::invalid_argument(u_errorName(status));
    }
    matcher.reset(subject);
    if (matcher.find() == 0 || matcher.start(1, status) < 0) {
        return std::nullopt;
    }
    return encoded(matcher.group(1, status));
}

} // namespace quorvel::Text
