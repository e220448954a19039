#include "LaunchKit/Wrappers/WrapperPropertyList.h"

#include "Base/CloneLayout.h"
#include "Base/Text.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"

#include <charconv>
#include <stdexcept>

namespace quorvel {
namespace {

std::optional<std::int64_t> wholeNumber(std::string_view text) {
    // `from_chars` rejects a plus sign; removing it must not let a second sign pass.
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

// `what` names the text, one of many that the user typed.
void requireWritableText(const std::string& text, const std::string& what) {
    try {
        PropertyList::requireWritable(text);
    } catch (const std::invalid_argument& error) {
        throw std::invalid_argument(what + ": " + error.what());
    }
}

bool isEdited(const std::string& key, const PropertyListDictionary& wanted,
              const PropertyListDictionary& written) {
    const auto now = wanted.find(key);
    const auto before = written.find(key);
    return now == wanted.end() || before == written.end()
               ? (now == wanted.end()) != (before == written.end())
               : !(now->second == before->second);
}

} // namespace

PropertyListValue WrapperPropertyList::coercePlistValue(std::string_view text) {
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

void WrapperPropertyList::requireWritableTexts(const InstanceConfig& config) {
    requireWritableText(config.displayName, "The name");
    requireWritableText(config.bundleId, "The identifier");
    for (const auto& [key, text] : config.infoPlistOverrides) {
        requireWritableText(key, "The key “" + key + "”");
        requireWritableText(text, "The value of “" + key + "”");
    }
}

PropertyListDictionary WrapperPropertyList::infoPlist(const WrapperGenerator::Options& options,
                                                      const std::optional<std::string>& iconFile) {
    const InstanceConfig& config = options.config;
    PropertyListDictionary info{
        {"CFBundleName", config.displayName},
        {"CFBundleDisplayName", config.displayName},
        {"CFBundleIdentifier", config.bundleId},
        {"CFBundleExecutable", std::string(wrapperExecutableName)},
        {"CFBundlePackageType", "APPL"},
        {"CFBundleInfoDictionaryVersion", "6.0"},
        {"CFBundleShortVersionString", "1.0"},
        {"CFBundleVersion", "1"},
        {"LSMinimumSystemVersion", "13.0"},
        {"NSHighResolutionCapable", true},
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

PropertyListDictionary WrapperPropertyList::withUsersChanges(PropertyListDictionary wanted,
                                                             const PropertyListDictionary& written,
                                                             const PropertyListDictionary& found,
                                                             std::vector<std::string>& kept) {
    for (const auto& [key, value] : found) {
        const auto old = written.find(key);
        if ((old != written.end() && old->second == value) || isEdited(key, wanted, written)) {
            continue;
        }
        try {
            (void)PropertyList::xml({{key, value}});
        } catch (const std::invalid_argument&) {
            throw Error("The entry “" + key +
                        "” of the clone’s Info.plist can’t be kept; remove it first.");
        }
        kept.push_back("“" + key + "” in Info.plist");
        wanted[key] = value;
    }
    for (const auto& [key, value] : written) {
        if (!found.contains(key) && !isEdited(key, wanted, written)) {
            kept.push_back("“" + key + "” in Info.plist");
            wanted.erase(key);
        }
    }
    return wanted;
}

} // namespace quorvel
