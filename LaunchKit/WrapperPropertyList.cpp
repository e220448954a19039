#include "LaunchKit/WrapperGenerator.h"
#include "Platform/Text.h"

#include <charconv>

namespace quorvel {
namespace {

std::optional<std::int64_t> wholeNumber(std::string_view text) {
    // The standard's parser knows no plus sign, and would take one sign behind another for none.
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) {
            return std::nullopt;
        }
    }
    std::int64_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = result.ec == std::errc{} && result.ptr == text.data() + text.size();
    return whole ? std::optional(number) : std::nullopt;
}

PropertyListArray webAddressTypes(const InstanceConfig& config) {
    return {PropertyListDictionary{
        {"CFBundleURLName", config.bundleId},
        {"CFBundleURLSchemes", PropertyListArray{"http", "https"}},
    }};
}

PropertyListArray anyDocument() {
    return {PropertyListDictionary{
        {"CFBundleTypeName", "All Files"},
        {"LSItemContentTypes", PropertyListArray{"public.data", "public.content"}},
        {"CFBundleTypeRole", "Viewer"},
        {"LSHandlerRank", "Alternate"},
    }};
}

} // namespace

PropertyListValue WrapperGenerator::coercePlistValue(std::string_view text) {
    const std::string trimmed = Text::trimmingWhitespace(text);
    const std::string lower = Text::lowerCased(trimmed);
    if (lower == "true" || lower == "yes") {
        return true;
    }
    if (lower == "false" || lower == "no") {
        return false;
    }
    if (const auto number = wholeNumber(trimmed)) {
        return *number;
    }
    return std::string(text);
}

void WrapperGenerator::requireWritableTexts(const InstanceConfig& config) {
    PropertyList::requireWritable(config.displayName);
    PropertyList::requireWritable(config.bundleId);
    for (const auto& [key, text] : config.infoPlistOverrides) {
        PropertyList::requireWritable(key);
        PropertyList::requireWritable(text);
    }
}

PropertyListDictionary WrapperGenerator::infoPlist(const Options& options,
                                                   const std::optional<std::string>& iconFile) {
    const InstanceConfig& config = options.config;
    PropertyListDictionary info{
        {"CFBundleName", config.displayName},    {"CFBundleDisplayName", config.displayName},
        {"CFBundleIdentifier", config.bundleId}, {"CFBundleExecutable", "runner"},
        {"CFBundlePackageType", "APPL"},         {"CFBundleInfoDictionaryVersion", "6.0"},
        {"CFBundleShortVersionString", "1.0"},   {"CFBundleVersion", "1"},
        {"LSMinimumSystemVersion", "13.0"},      {"NSHighResolutionCapable", true},
    };
    if (iconFile) {
        info["CFBundleIconFile"] = *iconFile;
    }
    if (options.hideWrapperIcon) {
        info["LSUIElement"] = true;
    }
    if (config.registerAsBrowser) {
        info["CFBundleURLTypes"] = webAddressTypes(config);
    }
    if (config.openWithPassthrough) {
        info["CFBundleDocumentTypes"] = anyDocument();
    }
    for (const auto& [key, text] : config.infoPlistOverrides) {
        info[key] = coercePlistValue(text);
    }
    return info;
}

} // namespace quorvel
