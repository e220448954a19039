#include "LaunchKit/InstanceConfig.h"

#include "LaunchKit/Records/RecordReader.h"
#include "LaunchKit/Records/RecordWriter.h"
#include "Platform/files/FileReading.h"
#include "Platform/homes/UserPaths.h"

#include <utility>

namespace quorvel {

template<>
struct RecordTable<IconLabel> {
    static constexpr std::string_view name = "icon label";
    static constexpr auto fields = sortedByKey(std::array{
        Row<IconLabel>::required<&IconLabel::text>("text"),
        Row<IconLabel>::required<&IconLabel::colorHex>("colorHex"),
        Row<IconLabel>::required<&IconLabel::position>("position"),
    });
};

namespace {

using ConfigRow = Row<InstanceConfig>;

template<std::size_t count, std::size_t... index>
consteval auto withSwitches(const std::array<FieldType, count>& rows,
                            std::index_sequence<index...> /*switches*/) {
    std::array<FieldType, count + sizeof...(index)> all{};
    std::copy(rows.begin(), rows.end(), all.begin());
    ((all[count + index] = ConfigRow::of<cloneSwitches[index].member>(cloneSwitches[index].key)),
     ...);
    return all;
}

} // namespace

template<>
struct RecordTable<InstanceConfig> {
    static constexpr std::string_view name = "configuration";
    static constexpr auto fields = sortedByKey(withSwitches(
        std::array{
            ConfigRow::required<&InstanceConfig::displayName>("displayName"),
            ConfigRow::required<&InstanceConfig::bundleId>("bundleId"),
            ConfigRow::of<&InstanceConfig::kind>("kind"),
            ConfigRow::of<&InstanceConfig::targetAppPath>("targetAppPath"),
            ConfigRow::required<&InstanceConfig::instanceHome>("instanceHome"),
            ConfigRow::of<&InstanceConfig::strategy>("strategy"),
            ConfigRow::of<&InstanceConfig::extraArgs>("extraArgs"),
            ConfigRow::of<&InstanceConfig::environment>("environment"),
            ConfigRow::of<&InstanceConfig::infoPlistOverrides>("infoPlistOverrides"),
            ConfigRow::of<&InstanceConfig::iconLabel>("iconLabel"),
            ConfigRow::of<&InstanceConfig::links>("links"),
            ConfigRow::of<&InstanceConfig::url>("url"),
            ConfigRow::of<&InstanceConfig::openPath>("openPath"),
            ConfigRow::of<&InstanceConfig::commandPath>("commandPath"),
            ConfigRow::of<&InstanceConfig::commandArgs>("commandArgs"),
            ConfigRow::of<&InstanceConfig::workingDirectory>("workingDirectory"),
        },
        std::make_index_sequence<cloneSwitches.size()>()));
};

namespace {

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

void InstanceConfig::decode(std::string& json, InstanceConfig& config) {
    if (const std::string faults = readRecord(json, config); !faults.empty()) {
        throw ConfigError(faults);
    }
}

InstanceConfig InstanceConfig::fromJson(std::string json) {
    InstanceConfig config;
    decode(json, config);
    return config;
}

std::optional<InstanceConfig> InstanceConfig::read(const std::string& file) {
    std::optional<std::string> bytes = readFile(file, maximumFileSize);
    std::optional<InstanceConfig> config;
    if (bytes && !readRecord(*bytes, config.emplace()).empty()) {
        config.reset();
    }
    return config;
}

std::string InstanceConfig::json() const {
    std::optional<std::string> json = writeRecord(*this);
    if (!json) {
        throw ConfigError("The configuration contains text that is not valid UTF-8.");
    }
    return std::move(*json);
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
