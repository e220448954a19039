// Feeds a bundle's property list through everything that reads one.
#include "Base/PropertyList.h"

#include <cstdint>
#include <cstdlib>
#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorvel;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto dictionary = PropertyList::parseDictionary(bytes);
    // What is left out of the document because nobody asked for it must make no difference.
    const char* const wanted = "CFBundleIdentifier";
    const auto part = PropertyList::parseDictionary(bytes, {wanted});
    if (part.has_value() != dictionary.has_value() ||
        (part &&
         PropertyList::stringFor(*part, wanted) != PropertyList::stringFor(*dictionary, wanted))) {
        std::abort();
    }
    if (!dictionary) {
        return 0;
    }
    for (const auto& [key, value] : *dictionary) {
        (void)value.boolean();
        (void)PropertyList::stringFor(*dictionary, key);
    }
    try {
        // Numbers may be rounded, but what was written must still be a list.
        if (!PropertyList::parseDictionary(PropertyList::xml(*dictionary))) {
            std::abort();
        }
    } catch (const std::invalid_argument&) {
        // Dates, data and control characters can't be written.
    }
    return 0;
}
