#include "LaunchKit/InstanceConfigFields.h"

#include <nlohmann/json.hpp>

#include <bitset>

namespace quorvel {
namespace {

using Json = nlohmann::json;

// Fills a record straight from the parser's events. No tree is built: listing thousands of clones
// spends its time here, and a file with endless nesting costs no memory for what nobody reads.
class ConfigReader final : public nlohmann::json_sax<Json> {
public:
    [[nodiscard]] InstanceConfig take() {
        for (std::size_t index = 0; index < instanceConfigFields.size(); ++index) {
            if (instanceConfigFields[index].required && !seen_[index]) {
                throw ConfigError("The key “" + std::string(instanceConfigFields[index].key) +
                                  "” is missing.");
            }
        }
        return std::move(config_);
    }

    bool null() override {
        if (skipped()) {
            return true;
        }
        // As good as not written, where the key may be left out; never inside a list or a map.
        if (place_ == Place::object && !field().required) {
            return done();
        }
        return mistyped();
    }

    bool boolean(bool value) override {
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
        return done();
    }

    bool number_integer(std::int64_t /*value*/) override { return skipped() || mistyped(); }
    bool number_unsigned(std::uint64_t /*value*/) override { return skipped() || mistyped(); }
    bool number_float(double /*value*/, const std::string& /*text*/) override {
        return skipped() || mistyped();
    }
    bool binary(Json::binary_t& /*value*/) override { return mistyped(); }

    bool string(std::string& value) override {
        if (skipped()) {
            return true;
        }
        switch (place_) {
        case Place::object:
            return stringMember(value);
        case Place::list:
            list_->push_back(std::move(value));
            return true;
        case Place::map:
            return map_->emplace(std::move(mapKey_), std::move(value)).second || repeated();
        case Place::label:
            return labelMember(value);
        default:
            return mistyped();
        }
    }

    bool start_object(std::size_t /*size*/) override {
        if (place_ == Place::outside) {
            place_ = Place::object;
            return true;
        }
        if (descend()) {
            return true;
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
                label_ = {};
                labelSeen_.reset();
                place_ = Place::label;
                return true;
            }
        }
        return mistyped();
    }

    bool key(std::string& name) override {
        if (skipping_ > 0) {
            return true;
        }
        switch (place_) {
        case Place::map:
            mapKey_ = std::move(name);
            return true;
        case Place::label:
            labelKey_ = std::move(name);
            skipNext_ = labelKey_ != "text" && labelKey_ != "colorHex" && labelKey_ != "position";
            return true;
        default:
            return objectKey(name);
        }
    }

    bool end_object() override {
        if (ascend()) {
            return true;
        }
        switch (place_) {
        case Place::label:
            if (!labelSeen_.all()) {
                throw ConfigError("The icon label is not complete.");
            }
            config_.iconLabel = std::move(label_);
            return done();
        case Place::map:
            return done();
        default:
            place_ = Place::outside;
            return true;
        }
    }

    bool start_array(std::size_t /*size*/) override {
        if (descend()) {
            return true;
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

    bool end_array() override { return ascend() || done(); }

    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const Json::exception& error) override {
        throw ConfigError(std::string("The configuration is not valid JSON: ") + error.what());
    }

private:
    enum class Place { outside, object, list, map, label };

    [[nodiscard]] const InstanceConfigField& field() const { return instanceConfigFields[field_]; }

    // The value of an unknown key is passed over whole, however deep it goes.
    bool skipped() {
        if (skipping_ > 0) {
            return true;
        }
        return std::exchange(skipNext_, false);
    }

    bool descend() {
        if (skipping_ > 0 || skipNext_) {
            skipNext_ = false;
            ++skipping_;
            return true;
        }
        return false;
    }

    bool ascend() {
        if (skipping_ > 0) {
            --skipping_;
            return true;
        }
        return false;
    }

    bool objectKey(const std::string& name) {
        const auto row =
            std::find_if(instanceConfigFields.begin(), instanceConfigFields.end(),
                         [&](const InstanceConfigField& known) { return known.key == name; });
        if (row == instanceConfigFields.end()) {
            skipNext_ = true;
            return true;
        }
        field_ = static_cast<std::size_t>(row - instanceConfigFields.begin());
        if (seen_[field_]) {
            return repeated();
        }
        seen_[field_] = true;
        return true;
    }

    bool stringMember(std::string& value) {
        if (const auto* text = std::get_if<std::string InstanceConfig::*>(&field().member)) {
            config_.** text = std::move(value);
        } else if (const auto* optional =
                       std::get_if<std::optional<std::string> InstanceConfig::*>(&field().member)) {
            config_.** optional = std::move(value);
        } else if (std::holds_alternative<ShortcutKind InstanceConfig::*>(field().member)) {
            config_.kind = known(shortcutKindFromRawString(value), value);
        } else if (std::holds_alternative<Strategy InstanceConfig::*>(field().member)) {
            config_.strategy = known(strategyFromRawString(value), value);
        } else {
            return mistyped();
        }
        return true;
    }

    bool labelMember(std::string& value) {
        const std::size_t index = labelKey_ == "text" ? 0 : labelKey_ == "colorHex" ? 1 : 2;
        if (labelSeen_[index]) {
            return repeated();
        }
        labelSeen_[index] = true;
        if (index == 0) {
            label_.text = std::move(value);
        } else if (index == 1) {
            label_.colorHex = std::move(value);
        } else {
            label_.position = known(iconLabelPositionFromRawString(value), value);
        }
        return true;
    }

    template<typename Case>
    static Case known(std::optional<Case> found, const std::string& text) {
        if (!found) {
            throw ConfigError("“" + text + "” is no known value.");
        }
        return *found;
    }

    bool done() {
        place_ = Place::object;
        return true;
    }

    [[noreturn]] bool mistyped() const {
        throw ConfigError(place_ == Place::outside ? "The configuration is not a JSON object."
                                                   : "The value of “" + std::string(field().key) +
                                                         "” is of the wrong type.");
    }

    [[noreturn]] static bool repeated() { throw ConfigError("A key stands twice."); }

    InstanceConfig config_;
    Place place_ = Place::outside;
    std::size_t field_ = 0;
    std::bitset<instanceConfigFields.size()> seen_;
    std::size_t skipping_ = 0;
    bool skipNext_ = false;
    std::vector<std::string>* list_ = nullptr;
    std::map<std::string, std::string>* map_ = nullptr;
    std::string mapKey_;
    IconLabel label_;
    std::bitset<3> labelSeen_;
    std::string labelKey_;
};

} // namespace

InstanceConfig InstanceConfig::fromJson(std::string_view json) {
    ConfigReader reader;
    Json::sax_parse(json.begin(), json.end(), &reader);
    return reader.take();
}

} // namespace quorvel
