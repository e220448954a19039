#include "Platform/desktop/UserLocale.h"

#include <CoreFoundation/CoreFoundation.h>

#include <array>

namespace quorvel::UserLocale {
namespace {

// Programs started by the Finder have no locale in their environment.
std::string fromSystem() {
    const CFLocaleRef locale = CFLocaleCopyCurrent();
    std::array<char, 128> identifier{};
    const bool known =
        CFStringGetCString(CFLocaleGetIdentifier(locale), identifier.data(),
                           static_cast<CFIndex>(identifier.size()), kCFStringEncodingUTF8) != 0;
    CFRelease(locale);
    return known ? identifier.data() : std::string();
}

} // namespace

std::string forOrder() {
    return fromSystem();
}

std::string forCase() {
    return fromSystem();
}

} // namespace quorvel::UserLocale
