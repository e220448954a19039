#include "LaunchKit/InstanceConfig.h"

#include "LaunchKit/InstanceConfigFields.h"
#include "LaunchKit/JsonText.h"
#include "LaunchKit/RawStrings.h"
#include "Platform/files/UserPaths.h"

#include <nlohmann/json.hpp>

namespace quorvel {
namespace {

constexpr RawStrings<ShortcutKind, 4> kinds{{
    {ShortcutKind::app, "app"},
    {ShortcutKind::web, "web"},
    {ShortcutKind::file, "file"},
    {ShortcutKind::command, "command"},
}};

constexpr RawStrings<IconLabel::Position, 3> positions{{
    {IconLabel::Position::bottom, "bottom"},
    {IconLabel::Position::center, "center"},
    {IconLabel::Position::top, "top"},
}};

nlohmann::json encoded(const IconLabel& label) {
    return {{"text", label.text},
            {"colorHex", label.colorHex},
            {"position", rawString(label.position)}};
}

template<typename Value>
nlohmann::json encoded(const Value& value) {
    if constexpr (std::is_enum_v<Value>) {
        return rawString(value);
    } else {
        return value;
    }
}

template<typename Value>
void addMember(nlohmann::json& object, std::string_view key, const Value& value) {
    object.emplace(key, encoded(value));
}

template<typename Value>
void addMember(nlohmann::json& object, std::string_view key, const std::optional<Value>& value) {
    if (value) {
        addMember(object, key, *value);
    }
}

std::vector<std::string> expandingAll(const std::vector<std::string>& texts,
                                      const std::string& home) {
    std::vector<std::string> result;
    result.reserve(texts.size());
    for (const std::string& text : texts) {
        result.push_back(expandingInstanceHome(text, home));
    }
    return result;
}

} // namespace

std::string_view rawString(ShortcutKind kind) {
    return rawStringIn(kinds, kind);
}

std::optional<ShortcutKind> shortcutKindFromRawString(std::string_view text) {
    return caseIn(kinds, text);
}

std::string_view rawString(IconLabel::Position position) {
    return rawStringIn(positions, position);
}

std::optional<IconLabel::Position> iconLabelPositionFromRawString(std::string_view text) {
    return caseIn(positions, text);
}

std::string InstanceConfig::json() const {
    nlohmann::json object = nlohmann::json::object();
    for (const InstanceConfigField& field : instanceConfigFields) {
        std::visit([&](auto member) { addMember(object, field.key, this->*member); }, field.member);
    }
    try {
        constexpr int indent = 2;
        return escapingSlashes(object.dump(indent));
    } catch (const nlohmann::json::exception&) {
        throw ConfigError("The configuration holds text that is not UTF-8.");
    }
}

std::string InstanceConfig::resolvedHome() const {
    return UserPaths::expandTilde(instanceHome);
}

std::vector<std::string> InstanceConfig::resolvedArgs() const {
    return expandingAll(extraArgs, resolvedHome());
}

std::map<std::string, std::string> InstanceConfig::resolvedEnvironment() const {
    const std::string home = resolvedHome();
    std::map<std::string, std::string> result;
    for (const auto& [key, value] : environment) {
        result.emplace(key, expandingInstanceHome(value, home));
    }
    return result;
}

std::vector<std::string> InstanceConfig::resolvedCommandArgs() const {
    return expandingAll(commandArgs, resolvedHome());
}

std::string expandingInstanceHome(std::string_view text, std::string_view home) {
    std::string result;
    std::size_t from = 0;
    for (std::size_t at = text.find(instanceHomePlaceholder); at != std::string_view::npos;
         at = text.find(instanceHomePlaceholder, from)) {
        result.append(text.substr(from, at - from)).append(home);
        from = at + instanceHomePlaceholder.size();
    }
    return result.append(text.substr(from));
}

} // namespace quorvel
