#include "LaunchKit/Records/RecordReader.h"

#include "Base/Utf8.h"
#include "LaunchKit/Records/JsonPruning.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <cstdint>
#include <initializer_list>
#include <utility>

namespace quorvel {
namespace {

// A record that is being read.
struct OpenRecord {
    const RecordType* type;
    void* record;
    std::uint64_t seen = 0;   // one bit per field
    std::size_t field = 0;    // the one whose value is read
    std::size_t expected = 0; // files have their keys in order, so usually the next one

    [[nodiscard]] const FieldType& current() const { return type->fields[field]; }
    [[nodiscard]] bool hasSeen(std::size_t index) const { return ((seen >> index) & 1U) != 0; }

    [[nodiscard]] std::optional<std::size_t> find(std::string_view key) {
        for (std::size_t step = 0; step < type->fields.size(); ++step) {
            const std::size_t index = expected;
            expected = expected + 1 == type->fields.size() ? 0 : expected + 1;
            if (type->fields[index].key == key) {
                return index;
            }
        }
        return std::nullopt;
    }
};

// Fills a record straight from the parser's events. No tree is built: listing thousands of clones
// spends its time here. Returning false ends the parsing.
class RecordReader {
public:
    RecordReader(void* record, const RecordType& type, bool checksTexts)
        : root_(record),
          type_(type),
          checksTexts_(checksTexts) {
        constexpr std::size_t usualDepth = 4;
        open_.reserve(usualDepth);
    }

    [[nodiscard]] const std::string& faults() const { return faults_; }

    void addFault(std::initializer_list<std::string_view> sentence) {
        faults_.append(faults_.empty() ? "" : " ");
        for (const std::string_view part : sentence) {
            faults_.append(part);
        }
    }

    bool Null() {
        // A null counts as a missing optional key; it is never valid inside a list or a map.
        return skipped() || (inRecord() && !open_.back().current().required) || mistyped();
    }

    bool Bool(bool value) {
        if (skipped()) {
            return true;
        }
        if (inRecord()) {
            const Place place = currentPlace();
            if (bool* const* to = std::get_if<bool*>(&place)) {
                **to = value;
                return true;
            }
        }
        return mistyped();
    }

    // No member of a record is a number.
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
        if (open_.empty()) {
            return mistyped();
        }
        if (!isText(value)) {
            return fault("contains an unpaired surrogate.");
        }
        if (list_ != nullptr) {
            list_->emplace_back(value);
        } else if (map_ != nullptr) {
            map_->emplace(mapKey_, value);
        } else {
            return textMember(value);
        }
        return true;
    }

    bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        const std::string_view name(text, length);
        if (skipping_ > 0) {
            return true;
        }
        // Of a key that appears several times, the first counts.
        if (map_ != nullptr) {
            mapKey_ = name;
            skipNext_ = map_->contains(mapKey_);
            return isText(name) || fault("contains an unpaired surrogate.");
        }
        OpenRecord& record = open_.back();
        const std::optional<std::size_t> known = record.find(name);
        skipNext_ = !known || record.hasSeen(*known);
        if (!skipNext_) {
            record.field = *known;
            record.seen |= std::uint64_t{1} << *known;
            faulty_ = false;
        }
        return true;
    }

    bool StartObject() {
        if (!started_) {
            started_ = true;
            open_.push_back({&type_, root_});
            return true;
        }
        if (skipped()) {
            return descend();
        }
        if (inRecord()) {
            const Place place = currentPlace();
            if (auto* const* map = std::get_if<std::map<std::string, std::string>*>(&place)) {
                map_ = *map;
                return true;
            }
            if (const auto* nested = std::get_if<RecordPlace>(&place)) {
                open_.push_back({open_.back().current().nested, nested->record});
                return true;
            }
        }
        return mistyped() && descend();
    }

    bool EndObject(rapidjson::SizeType /*members*/) {
        if (ascend()) {
            return true;
        }
        if (map_ != nullptr) {
            map_ = nullptr;
        } else {
            addMissingKeys();
            open_.pop_back();
        }
        return true;
    }

    bool StartArray() {
        if (skipped()) {
            return descend();
        }
        if (inRecord()) {
            const Place place = currentPlace();
            if (auto* const* list = std::get_if<std::vector<std::string>*>(&place)) {
                list_ = *list;
                return true;
            }
        }
        return mistyped() && descend();
    }

    bool EndArray(rapidjson::SizeType /*elements*/) {
        if (!ascend()) {
            list_ = nullptr;
        }
        return true;
    }

private:
    [[nodiscard]] bool inRecord() const {
        return !open_.empty() && list_ == nullptr && map_ == nullptr;
    }

    [[nodiscard]] Place currentPlace() const {
        return open_.back().current().place(open_.back().record);
    }

    bool textMember(std::string_view value) {
        const Place place = currentPlace();
        if (auto* const* text = std::get_if<std::string*>(&place)) {
            **text = value;
            return true;
        }
        if (const auto* choice = std::get_if<EnumPlace>(&place)) {
            return choice->assign(choice->value, value) || fault("is not known.");
        }
        return mistyped();
    }

    // The file itself is UTF-8; only an escape can still spell half of a surrogate pair.
    [[nodiscard]] bool isText(std::string_view value) const {
        return !checksTexts_ || isUtf8(value);
    }

    // The whole value of an unknown key is skipped.
    bool skipped() { return skipping_ > 0 || std::exchange(skipNext_, false); }

    // The parser recurses for each level, so deeper nesting must stop it here.
    bool descend() {
        constexpr std::size_t maximumDepth = 512;
        if (++skipping_ > maximumDepth) {
            addFault({"The ", type_.name, " is nested too deeply."});
            return false;
        }
        return true;
    }

    bool ascend() {
        if (skipping_ == 0) {
            return false;
        }
        --skipping_;
        return true;
    }

    void addMissingKeys() {
        const OpenRecord& record = open_.back();
        for (std::size_t index = 0; index < record.type->fields.size(); ++index) {
            if (record.type->fields[index].required && !record.hasSeen(index)) {
                addFault({"The key “", pathOf(record.type->fields[index]), "” is missing."});
            }
        }
    }

    // "iconLabel.position": the keys that lead to a field of the innermost record.
    [[nodiscard]] std::string pathOf(const FieldType& field) const {
        std::string path;
        for (std::size_t level = 0; level + 1 < open_.size(); ++level) {
            path.append(open_[level].current().key).append(".");
        }
        return path.append(field.key);
    }

    bool mistyped() {
        if (open_.empty()) {
            addFault({"The ", type_.name, " is not a JSON object."});
            return false;
        }
        return fault("is of the wrong type.");
    }

    // One fault for each member; the rest of the file is still read.
    bool fault(const char* predicate) {
        if (!std::exchange(faulty_, true)) {
            addFault({"The value of “", pathOf(open_.back().current()), "” ", predicate});
        }
        return true;
    }

    void* root_;
    const RecordType& type_;
    bool checksTexts_;
    std::string faults_{};
    bool started_ = false;
    bool faulty_ = false;            // the current member
    std::vector<OpenRecord> open_{}; // the innermost last
    std::vector<std::string>* list_ = nullptr;
    std::map<std::string, std::string>* map_ = nullptr;
    std::string mapKey_{};
    std::size_t skipping_ = 0;
    bool skipNext_ = false;
};

// Works in place, which overwrites the text.
std::string parse(char* json, std::size_t length, void* record, const RecordType& type) {
    RecordReader handler(record, type,
                         std::string_view(json, length).find("\\u") != std::string::npos);
    rapidjson::InsituStringStream stream(json);
    rapidjson::CrtAllocator allocator;
    rapidjson::Reader reader(&allocator);
    constexpr unsigned flags = rapidjson::kParseInsituFlag;
    const rapidjson::ParseResult result = reader.Parse<flags>(stream, handler);
    const char* const notJson = " is not valid JSON: ";
    if (result.IsError() && result.Code() != rapidjson::kParseErrorTermination) {
        handler.addFault({"The ", type.name, notJson, rapidjson::GetParseError_En(result.Code())});
    } else if (!result.IsError() && stream.Tell() != length) {
        // The parser takes a NUL for the end of the text, but here it is a byte like any other.
        handler.addFault({"The ", type.name, notJson, "It contains a NUL byte."});
    }
    return handler.faults();
}

// Returns the text without members of unknown keys; std::nullopt if it is not a JSON object.
std::optional<std::string> withKnownMembersOnly(std::string_view json, const RecordType& type) {
    std::vector<std::string_view> keys;
    for (const FieldType& field : type.fields) {
        keys.push_back(field.key);
    }
    return withMembersOnly(json, keys, [&](std::string_view key, std::string_view value) {
        const auto field = std::find_if(type.fields.begin(), type.fields.end(),
                                        [&](const FieldType& row) { return row.key == key; });
        const auto pruned = field != type.fields.end() && field->nested != nullptr
                                ? withKnownMembersOnly(value, *field->nested)
                                : std::nullopt;
        return pruned.value_or(std::string(value));
    });
}

} // namespace

std::string readRecord(std::string& json, void* record, const RecordType& type) {
    if (!isUtf8(json)) {
        return "The " + std::string(type.name) + " is not valid UTF-8.";
    }
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    const std::size_t start = json.starts_with(mark) ? mark.size() : 0;
    const std::string whole = json.substr(start);
    std::string faults = parse(json.data() + start, whole.size(), record, type);
    if (faults.empty()) {
        return faults;
    }
    // The parser may reject the value of an unknown key.
    std::optional<std::string> pruned = withKnownMembersOnly(whole, type);
    if (!pruned) {
        return faults;
    }
    type.reset(record);
    return parse(pruned->data(), pruned->size(), record, type);
}

} // namespace quorvel
