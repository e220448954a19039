#pragma once

#import <Foundation/Foundation.h>

#include <string>

/// Texts and addresses, to and from the system's classes.
namespace quorvel {

/// Returns the text, empty for nil.
[[nodiscard]] inline std::string textOf(NSString* _Nullable text) {
    const char* const bytes = text.UTF8String;
    return bytes == nullptr ? std::string() : std::string(bytes);
}

/// Returns the address, empty for nil.
[[nodiscard]] inline std::string textOfURL(NSURL* _Nullable address) {
    return textOf(address.absoluteString);
}

/// Returns the text, empty if it is not valid UTF-8.
[[nodiscard]] inline NSString* _Nonnull nsText(const std::string& text) {
    NSString* const made = [NSString stringWithUTF8String:text.c_str()];
    return made == nil ? @"" : made;
}

/// Returns the value if it is a text, as values from pages may be anything; else an empty text.
[[nodiscard]] inline std::string textIn(id _Nullable value) {
    return [value isKindOfClass:[NSString class]] ? textOf((NSString*)value) : std::string();
}

} // namespace quorvel
