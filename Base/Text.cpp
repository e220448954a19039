#include "Base/Text.h"

#include "Base/AsciiCase.h"
#include "Base/LineBreak.h"

#include <unicode/casemap.h>
#include <unicode/coll.h>
#include <unicode/normalizer2.h>
#include <unicode/regex.h>
#include <unicode/stringoptions.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
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

std::unique_ptr<icu::Collator> collatorFor(const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> made(icu::Collator::createInstance(locale, status));
    return U_SUCCESS(status) ? std::move(made) : nullptr;
}

std::unique_ptr<icu::Collator> makeCollator(const std::string& locale) {
    const icu::Locale users = icu::Locale::createCanonical(locale.c_str());
    auto made = users.isBogus() ? nullptr : collatorFor(users);
    if (made == nullptr) {
        made = collatorFor(icu::Locale::getRoot());
    }
    if (made != nullptr) {
        made->setStrength(icu::Collator::SECONDARY);
    }
    return made;
}

// Kept per thread: creating a collator loads locale data, and it must not be shared without a lock.
// Returns null if ICU has no data at all.
const icu::Collator* collatorNamed(const std::string& locale) {
    thread_local std::optional<std::string> current;
    thread_local std::unique_ptr<icu::Collator> instance;
    if (current != locale) {
        instance = makeCollator(locale);
        current = locale;
    }
    return instance.get();
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
    // The bytes in between are returned unchanged, well-formed or not.
    const std::size_t head = encoded(all.tempSubStringBetween(0, start)).size();
    const std::size_t tail = encoded(all.tempSubStringBetween(end)).size();
    return std::string(text.substr(head, text.size() - head - tail));
}

bool isBlank(UChar32 scalar) {
    return scalar == '\t' || u_charType(scalar) == U_SPACE_SEPARATOR;
}

bool isBlankOrNewline(UChar32 scalar) {
    return isBlank(scalar) || isLineBreak(static_cast<char32_t>(scalar));
}

// Appends a key whose byte order is the order of names. Equal keys mean equal names.
void appendCollationKey(const icu::Collator* collator, std::string_view text, std::string& keys) {
    icu::UnicodeString string = decoded(text);
    if (collator == nullptr) {
        keys += encoded(string.foldCase());
        return;
    }
    const std::size_t start = keys.size();
    // Enough for an ordinary name's key; `resize` grows the capacity geometrically.
    std::size_t size = static_cast<std::size_t>(string.length()) * 2 + 16;
    while (true) {
        keys.resize(start + size);
        auto* key = reinterpret_cast<std::uint8_t*>(keys.data() + start);
        const auto needed = static_cast<std::size_t>(
            collator->getSortKey(string, key, static_cast<std::int32_t>(size)));
        if (needed <= size) {
            keys.resize(start + needed);
            return;
        }
        size = needed;
    }
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

// In these languages the lower case of "I" is the dotless "ı".
bool isTurkic(std::string_view locale) {
    const std::string_view language = locale.substr(0, locale.find_first_of("_-.@"));
    return language == "tr" || language == "az";
}

// Returns a form that is equal for texts that differ only in case or in the encoding of marks.
icu::UnicodeString comparable(std::string_view text, bool turkic) {
    const auto normalized = [](const icu::UnicodeString& source, auto form) {
        UErrorCode status = U_ZERO_ERROR;
        const icu::Normalizer2* normalizer = form(status);
        icu::UnicodeString result =
            U_SUCCESS(status) ? normalizer->normalize(source, status) : source;
        return U_SUCCESS(status) ? result : source;
    };
    // The dot of a Turkish "İ" must not be decomposed before case folding.
    icu::UnicodeString folded =
        normalized(decoded(text),
                   turkic ? icu::Normalizer2::getNFCInstance : icu::Normalizer2::getNFDInstance);
    folded.foldCase(turkic ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT);
    return normalized(folded, icu::Normalizer2::getNFDInstance);
}

// Whether the scalar at that index extends the character before it.
bool extends(const icu::UnicodeString& text, int32_t at) {
    constexpr UChar32 joiner = 0x200D;
    constexpr UChar32 nonJoiner = 0x200C;
    const UChar32 scalar = at < text.length() ? text.char32At(at) : 0;
    return (U_GET_GC_MASK(scalar) & U_GC_M_MASK) != 0 || scalar == joiner || scalar == nonJoiner;
}

std::string titleCased(UChar32 letter) {
    const icu::UnicodeString source(letter);
    std::array<UChar, 8> buffer{};
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = icu::CaseMap::toTitle(
        "", U_TITLECASE_WHOLE_STRING, nullptr, source.getBuffer(), source.length(), buffer.data(),
        static_cast<int32_t>(buffer.size()), nullptr, status);
    return encoded(U_SUCCESS(status) ? icu::UnicodeString(buffer.data(), length) : source);
}

} // namespace

std::vector<std::size_t> sortedOrder(const std::vector<std::string_view>& names,
                                     const std::string& locale) {
    // Sort keys are computed once per name: comparing names in each step would cost far more.
    const icu::Collator* collator = collatorNamed(locale);
    std::string keys;
    std::vector<std::size_t> ends{0};
    ends.reserve(names.size() + 1);
    for (const std::string_view name : names) {
        appendCollationKey(collator, name, keys);
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

bool containsIgnoringCase(std::string_view text, std::string_view part, std::string_view locale) {
    if (part.empty()) {
        return false;
    }
    const bool turkic = isTurkic(locale);
    if (!turkic && isAscii(text) && isAscii(part)) {
        return std::search(text.begin(), text.end(), part.begin(), part.end(), [](char a, char b) {
                   return asciiLower(a) == asciiLower(b);
               }) != text.end();
    }
    const icu::UnicodeString haystack = comparable(text, turkic);
    const icu::UnicodeString needle = comparable(part, turkic);
    for (int32_t at = haystack.indexOf(needle); at >= 0; at = haystack.indexOf(needle, at + 1)) {
        if (!extends(haystack, at) && !extends(haystack, at + needle.length())) {
            return true;
        }
    }
    return false;
}

std::string upperCased(std::string_view text) {
    return encoded(decoded(text).toUpper(icu::Locale::getRoot()));
}

std::string lowerCased(std::string_view text) {
    return encoded(decoded(text).toLower(icu::Locale::getRoot()));
}

std::string capitalizingWords(std::string_view text) {
    enum class Previous { letter, apostropheAfterLetter, other };
    const icu::UnicodeString all = decoded(text);
    std::string result;
    Previous previous = Previous::other;
    for (int32_t index = 0; index < all.length(); index = all.moveIndex32(index, 1)) {
        const UChar32 scalar = all.char32At(index);
        const uint32_t category = U_GET_GC_MASK(scalar);
        if ((category & U_GC_LC_MASK) != 0) {
            result += previous == Previous::other ? titleCased(scalar)
                                                  : lowerCased(encoded(icu::UnicodeString(scalar)));
            previous = Previous::letter;
            continue;
        }
        result += encoded(icu::UnicodeString(scalar));
        // Marks belong to the character before them.
        if ((category & (U_GC_M_MASK | U_GC_CF_MASK)) == 0) {
            const bool apostrophe = scalar == '\'' || scalar == 0x2019;
            previous = apostrophe && previous == Previous::letter ? Previous::apostropheAfterLetter
                                                                  : Previous::other;
        }
    }
    return result;
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
