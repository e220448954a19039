#include "LaunchKit/Records/RecordWriter.h"

#include <nlohmann/json.hpp>

namespace quorvel {
namespace {

using Json = nlohmann::json;

Json encoded(const void* record, const RecordType& type);

struct Encoder {
    const RecordType* nested;

    Json operator()(const EnumPlace& place) const { return place.name(place.value); }
    Json operator()(const RecordPlace& place) const { return encoded(place.record, *nested); }
    template<typename Value>
    Json operator()(const Value* value) const {
        return *value;
    }
};

Json encoded(const void* record, const RecordType& type) {
    Json object = Json::object();
    for (const FieldType& field : type.fields) {
        if (field.present(record)) {
            // Only an absent member would be changed.
            const Place place = field.place(const_cast<void*>(record));
            object.emplace(field.key, std::visit(Encoder{field.nested}, place));
        }
    }
    return object;
}

std::string escapingSlashes(const std::string& json) {
    std::string result;
    result.reserve(json.size() + json.size() / 16);
    for (const char character : json) {
        // Slashes appear only inside strings, where JSON allows them to be escaped.
        if (character == '/') {
            result.push_back('\\');
        }
        result.push_back(character);
    }
    return result;
}

} // namespace

std::optional<std::string> writeRecord(const void* record, const RecordType& type) {
    constexpr int indent = 2;
    try {
        return escapingSlashes(encoded(record, type).dump(indent));
    } catch (const Json::type_error&) {
        return std::nullopt;
    }
}

} // namespace quorvel
