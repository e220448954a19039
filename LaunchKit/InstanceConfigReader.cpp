#include "Base/Utf8.h"
#include "LaunchKit/InstanceConfigFields.h"
#include "LaunchKit/JsonPruning.h"
#include "Platform/files/FileReading.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <utility>

namespace quorvel {
namespace {

constexpr std::array<std::string_view, 3> labelKeys{"text", "colorHex", "position"};

// Finds keys among the fields. Files have them in sorted order, so that the next key is mostly
// found at the first look.
class KeyFinder {
public:
    [[nodiscard]] std::optional<std::size_t> indexOf(std::string_view key) {
        for (std::size_t step = 0; step < sorted.size(); ++step) {
            const std::size_t index = sorted[next_];
            next_ = next_ + 1 == sorted.size() ? 0 : next_ + 1;
            if (instanceConfigFields[index].key == key) {
                return index;
            }
        }
        return std::nullopt;
    }

private:
    static constexpr auto sorted = [] {
        std::array<std::size_t, instanceConfigFields.size()> indexes{};
        for (std::size_t index = 0; index < indexes.size(); ++index) {
            indexes[index] = index;
        }
        std::sort(indexes.begin(), indexes.end(), [](std::size_t a, std::size_t b) {
            return instanceConfigFields[a].key < instanceConfigFields[b].key;
        });
        return indexes;
    }();

    std::size_t next_ = 0;
};

// Fills a record straight from the parser's events. No tree is built: listing thousands of clones
// spends its time here.
// A false answer ends the parsing; the reason is in `problem`.
class ConfigReader {
public:
    ConfigReader(InstanceConfig& config, bool checksTexts)
        : config_(config),
          checksTexts_(checksTexts) {}

    void requireWhole() const {
        for (std::size_t index = 0; index < instanceConfigFields.size(); ++index) {
            if (instanceConfigFields[index].required && !seen_[index]) {
                throw ConfigError("The key “" + std::string(instanceConfigFields[index].key) +
                                  "” is missing.");
            }
        }
    }

    [[nodiscard]] const std::string& problem() const { return problem_; }

    bool Null() {
        if (skipped()) {
            return true;
        }
        // As good as not written, where the key may be left out; never inside a list or a map.
        return (place_ == Place::object && !field().required) || mistyped();
    }

    bool Bool(bool value) {
        if (skipped()) {
            return true;
        }
        auto* member = place_ == Place::object
                           ? std::get_if<bool InstanceConfig::*>(&field().member)
                           : nullptr;
        if (member == nullptr) {
            return mistyped();
        }
        config_.** member = value;
        return true;
    }

    // No value of a record is a number.
    bool Int(int /*value*/) { return skipped() || mistyped(); }
    bool Uint(unsigned /*value*/) { return skipped() || mistyped(); }
    bool Int64(std::int64_t /*value*/) { return skipped() || mistyped(); }
    bool Uint64(std::uint64_t /*value*/) { return skipped() || mistyped(); }
    bool Double(double /*value*/) { return skipped() || mistyped(); }
    bool RawNumber(const char* /*text*/, rapidjson::SizeType /*length*/, bool /*copy*/) {
        return skipped() || mistyped();
    }

    bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        const std::string_view value(text, length);
        if (skipped()) {
            return true;
        }
        if (!isText(value)) {
            return fails("A text holds half a character.");
        }
        switch (place_) {
        case Place::object:
            return stringMember(value);
        case Place::list:
            list_->emplace_back(value);
            return true;
        case Place::map:
            map_->emplace(mapKey_, value);
            return true;
        case Place::label:
            return labelMember(value);
        default:
            return mistyped();
        }
    }

    bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        const std::string_view name(text, length);
        if (skipping_ > 0) {
            return true;
        }
        // Of a key that stands several times, the first counts.
        switch (place_) {
        case Place::map:
            mapKey_ = name;
            skipNext_ = map_->contains(mapKey_);
            return isText(name) || fails("A key holds half a character.");
        case Place::label:
            labelKey(name);
            return true;
        default:
            objectKey(name);
            return true;
        }
    }

    bool StartObject() {
        if (place_ == Place::outside) {
            place_ = Place::object;
            return true;
        }
        if (skipped()) {
            return descend();
        }
        if (place_ == Place::object) {
            if (auto* map = std::get_if<std::map<std::string, std::string> InstanceConfig::*>(
                    &field().member)) {
                map_ = &(config_.**map);
                place_ = Place::map;
                return true;
            }
            if (std::holds_alternative<std::optional<IconLabel> InstanceConfig::*>(
                    field().member)) {
                place_ = Place::label;
                return true;
            }
        }
        return mistyped();
    }

    bool EndObject(rapidjson::SizeType /*members*/) {
        if (ascend()) {
            return true;
        }
        if (place_ == Place::label && !labelSeen_.all()) {
            return fails("The icon label is not complete.");
        }
        if (place_ == Place::label) {
            config_.iconLabel = std::move(label_);
        }
        place_ = Place::object;
        return true;
    }

    bool StartArray() {
        if (skipped()) {
            return descend();
        }
        auto* list = place_ == Place::object
                         ? std::get_if<std::vector<std::string> InstanceConfig::*>(&field().member)
                         : nullptr;
        if (list == nullptr) {
            return mistyped();
        }
        list_ = &(config_.**list);
        place_ = Place::list;
        return true;
    }

    bool EndArray(rapidjson::SizeType /*elements*/) {
        if (!ascend()) {
            place_ = Place::object;
        }
        return true;
    }

private:
    enum class Place { outside, object, list, map, label };

    [[nodiscard]] const InstanceConfigField& field() const { return instanceConfigFields[field_]; }

    // The file itself is UTF-8; only an escape can still spell half of a surrogate pair.
    [[nodiscard]] bool isText(std::string_view value) const {
        return !checksTexts_ || isUtf8(value);
    }

    // The value of an unknown key is passed over whole.
    bool skipped() { return skipping_ > 0 || std::exchange(skipNext_, false); }

    // The parser calls itself for each level, so that what goes deeper must end it here.
    bool descend() {
        constexpr std::size_t maximumDepth = 512;
        return ++skipping_ <= maximumDepth || fails("The configuration nests too deeply.");
    }

    bool ascend() {
        if (skipping_ == 0) {
            return false;
        }
        --skipping_;
        return true;
    }

    void objectKey(std::string_view name) {
        const std::optional<std::size_t> known = keys_.indexOf(name);
        skipNext_ = !known || seen_[*known];
        if (!skipNext_) {
            field_ = *known;
            seen_[field_] = true;
        }
    }

    void labelKey(std::string_view name) {
        const auto found = std::find(labelKeys.begin(), labelKeys.end(), name);
        labelKey_ = static_cast<std::size_t>(found - labelKeys.begin());
        skipNext_ = found == labelKeys.end() || labelSeen_[labelKey_];
    }

    bool stringMember(std::string_view value) {
        if (const auto* text = std::get_if<std::string InstanceConfig::*>(&field().member)) {
            config_.** text = value;
            return true;
        }
        if (const auto* optional =
                std::get_if<std::optional<std::string> InstanceConfig::*>(&field().member)) {
            config_.** optional = value;
            return true;
        }
        if (std::holds_alternative<ShortcutKind InstanceConfig::*>(field().member)) {
            return assign(config_.kind, shortcutKindFromRawString(value));
        }
        if (std::holds_alternative<Strategy InstanceConfig::*>(field().member)) {
            return assign(config_.strategy, strategyFromRawString(value));
        }
        return mistyped();
    }

    bool labelMember(std::string_view value) {
        labelSeen_[labelKey_] = true;
        if (labelKeys[labelKey_] == "text") {
            label_.text = value;
        } else if (labelKeys[labelKey_] == "colorHex") {
            label_.colorHex = value;
        } else {
            return assign(label_.position, iconLabelPositionFromRawString(value));
        }
        return true;
    }

    template<typename Case>
    bool assign(Case& member, const std::optional<Case>& value) {
        if (!value) {
            return fails("The value of “" + std::string(field().key) + "” is not known.");
        }
        member = *value;
        return true;
    }

    bool mistyped() {
        return fails(place_ == Place::outside
                         ? "The configuration is not a JSON object."
                         : "The value of “" + std::string(field().key) + "” is of the wrong type.");
    }

    bool fails(std::string problem) {
        problem_ = std::move(problem);
        return false;
    }

    InstanceConfig& config_;
    bool checksTexts_;
    std::string problem_;
    KeyFinder keys_;
    Place place_ = Place::outside;
    std::size_t field_ = 0;
    std::bitset<instanceConfigFields.size()> seen_;
    std::size_t skipping_ = 0;
    bool skipNext_ = false;
    std::vector<std::string>* list_ = nullptr;
    std::map<std::string, std::string>* map_ = nullptr;
    std::string mapKey_;
    IconLabel label_;
    std::bitset<labelKeys.size()> labelSeen_;
    std::size_t labelKey_ = 0;
};

// Works in place: the text is used up.
void parse(char* json, std::size_t length, InstanceConfig& config) {
    ConfigReader record(config, std::string_view(json, length).find("\\u") != std::string::npos);
    rapidjson::InsituStringStream stream(json);
    rapidjson::CrtAllocator allocator;
    rapidjson::Reader reader(&allocator);
    constexpr unsigned flags = rapidjson::kParseInsituFlag;
    const rapidjson::ParseResult result = reader.Parse<flags>(stream, record);
    if (!record.problem().empty()) {
        throw ConfigError(record.problem());
    }
    if (result.IsError()) {
        throw ConfigError(std::string("The configuration is not valid JSON: ") +
                          rapidjson::GetParseError_En(result.Code()));
    }
    // To the parser a NUL is the end of the text; here it is a byte like any other.
    if (stream.Tell() != length) {
        throw ConfigError("The configuration is not valid JSON: It holds a NUL byte.");
    }
    record.requireWhole();
}

// The same without members that mean nothing; std::nullopt if it is not a JSON object.
std::optional<std::string> withKnownMembersOnly(std::string_view json) {
    std::array<std::string_view, instanceConfigFields.size()> keys;
    std::transform(instanceConfigFields.begin(), instanceConfigFields.end(), keys.begin(),
                   [](const InstanceConfigField& field) { return field.key; });
    return withMembersOnly(json, keys, [](std::string_view key, std::string_view value) {
        const auto label = key == "iconLabel" ? withMembersOnly(value, labelKeys) : std::nullopt;
        return label.value_or(std::string(value));
    });
}

} // namespace

void InstanceConfig::decode(std::string& json, InstanceConfig& config) {
    if (!isUtf8(json)) {
        throw ConfigError("The configuration is not UTF-8 text.");
    }
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    const std::size_t start = json.starts_with(mark) ? mark.size() : 0;
    const std::string whole = json.substr(start);
    try {
        parse(json.data() + start, whole.size(), config);
    } catch (const ConfigError&) {
        // What stands under an unknown key may be too much for the parser.
        std::optional<std::string> pruned = withKnownMembersOnly(whole);
        if (!pruned) {
            throw;
        }
        config = {};
        parse(pruned->data(), pruned->size(), config);
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
    try {
        if (bytes) {
            decode(*bytes, config.emplace());
        }
    } catch (const ConfigError&) {
        config.reset();
    }
    return config;
}

} // namespace quorvel
