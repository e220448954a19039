#include "Base/PropertyList.h"

#include "Base/PropertyListLimits.h"
#include "Base/PropertyListPruning.h"
#include "Base/PropertyListXml.h"
#include "Base/Utf8.h"

#include <plist/plist.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace quorvel {
namespace {

struct NodeDeleter {
    void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, NodeDeleter>;

struct CDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
template<typename T>
using CMemory = std::unique_ptr<T, CDeleter>;

std::string text(const char* bytes, std::size_t length) {
    const std::string_view view(bytes, length);
    return isUtf8(view) ? std::string(view) : utf8FromLatin1(view);
}

PropertyListValue converted(plist_t node);

PropertyListArray convertedArray(plist_t node) {
    PropertyListArray result;
    plist_array_iter raw = nullptr;
    plist_array_new_iter(node, &raw);
    const CMemory<void> iterator(raw);
    plist_t item = nullptr;
    for (plist_array_next_item(node, raw, &item); item != nullptr;
         plist_array_next_item(node, raw, &item)) {
        result.push_back(converted(item));
    }
    return result;
}

bool isWanted(plist_t item, PropertyList::Keys keys) {
    return keys.size() == 0 || std::any_of(keys.begin(), keys.end(), [&](const char* key) {
               return plist_key_val_compare(plist_dict_item_get_key(item), key) == 0;
           });
}

PropertyListDictionary convertedDictionary(plist_t node, PropertyList::Keys keys = {}) {
    PropertyListDictionary result;
    plist_dict_iter raw = nullptr;
    plist_dict_new_iter(node, &raw);
    const CMemory<void> iterator(raw);
    while (true) {
        plist_t item = nullptr;
        plist_dict_next_item(node, raw, nullptr, &item);
        if (item == nullptr) {
            return result;
        }
        if (!isWanted(item, keys)) {
            continue;
        }
        char* rawKey = nullptr;
        plist_dict_get_item_key(item, &rawKey);
        const CMemory<char> key(rawKey);
        if (key == nullptr) {
            return result;
        }
        result.insert_or_assign(text(key.get(), std::char_traits<char>::length(key.get())),
                                converted(item));
    }
}

PropertyListValue converted(plist_t node) {
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        std::uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return value != 0;
    }
    case PLIST_UINT: {
        std::uint64_t value = 0;
        plist_get_uint_val(node, &value);
        return static_cast<std::int64_t>(value);
    }
    case PLIST_REAL: {
        double value = 0;
        plist_get_real_val(node, &value);
        return value;
    }
    case PLIST_STRING: {
        std::uint64_t length = 0;
        const char* bytes = plist_get_string_ptr(node, &length);
        return bytes == nullptr ? std::string{} : text(bytes, length);
    }
    case PLIST_ARRAY:
        return convertedArray(node);
    case PLIST_DICT:
        return convertedDictionary(node);
    default:
        return {};
    }
}

const char* xmlText(const std::string& value) {
    PropertyList::requireWritable(value);
    return value.c_str();
}

struct NodeMaker {
    Node operator()(std::monostate) const {
        throw std::invalid_argument("a property list can't hold an empty value");
    }
    Node operator()(bool value) const { return Node(plist_new_bool(value ? 1 : 0)); }
    Node operator()(std::int64_t value) const {
#ifdef QUORVEL_PLIST_HAS_SIGNED_INTEGERS
        return Node(plist_new_int(value));
#else
        // Library versions without signed integers write these bits as a signed number.
        return Node(plist_new_uint(static_cast<std::uint64_t>(value)));
#endif
    }
    Node operator()(double value) const {
        return Node(plist_new_real(value));
    }
    Node operator()(const std::string& value) const {
        return Node(plist_new_string(xmlText(value)));
    }
    Node operator()(const PropertyListArray& value) const {
        Node node(plist_new_array());
        for (const PropertyListValue& item : value) {
            plist_array_append_item(node.get(), std::visit(*this, item.storage).release());
        }
        return node;
    }
    Node operator()(const PropertyListDictionary& value) const {
        Node node(plist_new_dict());
        for (const auto& [key, item] : value) {
            const char* name = xmlText(key); // may throw, so before release()
            plist_dict_set_item(node.get(), name, std::visit(*this, item.storage).release());
        }
        return node;
    }
};

using Parser = decltype(&plist_from_xml);

std::optional<PropertyListDictionary> parsed(Parser parser, std::string_view bytes,
                                             PropertyList::Keys keys) {
    plist_t raw = nullptr;
    parser(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &raw);
    const Node root(raw);
    if (!root || plist_get_node_type(root.get()) != PLIST_DICT) {
        return std::nullopt;
    }
    return convertedDictionary(root.get(), keys);
}

// Lists that take much memory are parsed one at a time, however many threads ask.
std::optional<PropertyListDictionary> parsedOneAtATime(Parser parser, std::string_view bytes,
                                                       PropertyList::Keys keys,
                                                       std::optional<std::size_t> neededBytes) {
    constexpr std::size_t large = std::size_t{1} << 20U;
    if (!neededBytes || *neededBytes <= large) {
        return neededBytes ? parsed(parser, bytes, keys) : std::nullopt;
    }
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    // On a new thread: the C library keeps freed memory for each thread, and gives that of a thread
    // that has ended to the next new one.
    std::optional<PropertyListDictionary> result;
    std::exception_ptr failure;
    std::thread([&] {
        try {
            result = parsed(parser, bytes, keys);
        } catch (...) {
            failure = std::current_exception();
        }
    }).join();
    if (failure) {
        std::rethrow_exception(failure);
    }
    return result;
}

std::optional<PropertyListDictionary> parsedXml(std::string_view document,
                                                PropertyList::Keys keys) {
    if (const auto needed = PropertyListLimits::neededBytes(document)) {
        return keys.size() == 0
                   ? parsedOneAtATime(plist_from_xml, document, keys, needed)
                   : parsedOneAtATime(plist_from_xml, PropertyListPruning::pruned(document, keys),
                                      keys, needed);
    }
    // Exceeds the limits, or is written in a way that the parser may misread.
    const auto plain = PropertyListXml::simplified(document);
    return plain ? parsedOneAtATime(plist_from_xml, *plain, keys,
                                    PropertyListLimits::neededBytes(*plain))
                 : std::nullopt;
}

} // namespace

PropertyListValue::PropertyListValue(PropertyListArray value) : storage(std::move(value)) {}
PropertyListValue::PropertyListValue(PropertyListDictionary value) : storage(std::move(value)) {}

std::optional<bool> PropertyListValue::boolean() const {
    if (const auto* flag = std::get_if<bool>(&storage)) {
        return *flag;
    }
    double number = -1;
    if (const auto* integer = std::get_if<std::int64_t>(&storage)) {
        number = static_cast<double>(*integer);
    } else if (const auto* real = std::get_if<double>(&storage)) {
        number = *real;
    }
    return number == 0 || number == 1 ? std::optional(number == 1) : std::nullopt;
}

namespace PropertyList {

std::optional<PropertyListDictionary> parseDictionary(std::string_view bytes, Keys keys) {
    if (bytes.empty() || bytes.size() > maximumFileSize) {
        return std::nullopt;
    }
    if (bytes.starts_with("bplist")) {
        return parsedOneAtATime(plist_from_bin, bytes, keys,
                                PropertyListLimits::neededBytes(bytes));
    }
    std::string buffer;
    const auto document = PropertyListXml::asUtf8(bytes, buffer);
    return document ? parsedXml(*document, keys) : std::nullopt;
}

std::optional<std::string> stringFor(const PropertyListDictionary& dictionary,
                                     const std::string& key) {
    const auto found = dictionary.find(key);
    const std::string* value = found == dictionary.end() ? nullptr : found->second.string();
    return value == nullptr ? std::nullopt : std::optional(*value);
}

void requireWritable(const std::string& text) {
    for (const char byte : text) {
        const auto code = static_cast<unsigned char>(byte);
        if (code < 0x20 && code != '\t' && code != '\n' && code != '\r') {
            throw std::invalid_argument("a property list can't hold control characters");
        }
    }
    if (!isUtf8(text)) {
        throw std::invalid_argument("a property list can't hold text that is not UTF-8");
    }
    for (const char* noncharacter : {"\uFFFE", "\uFFFF"}) {
        if (text.find(noncharacter) != std::string::npos) {
            throw std::invalid_argument("a property list can't hold U+FFFE or U+FFFF");
        }
    }
}

std::string xml(const PropertyListDictionary& dictionary) {
    const Node root = NodeMaker{}(dictionary);
    char* raw = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(root.get(), &raw, &length);
    const CMemory<char> document(raw);
    if (!document) {
        throw std::invalid_argument("the property list couldn't be written as XML");
    }
    return {document.get(), length};
}

} // namespace PropertyList
} // namespace quorvel
