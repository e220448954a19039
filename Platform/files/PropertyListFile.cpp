#include "Platform/files/PropertyListFile.h"

#include "Platform/files/FileReading.h"

namespace quorvel {

std::optional<PropertyListDictionary> readPropertyList(const std::string& file,
                                                       PropertyList::Keys keys) {
    const std::optional<std::string> bytes = readFile(file, PropertyList::maximumFileSize);
    return bytes ? PropertyList::parseDictionary(*bytes, keys) : std::nullopt;
}

} // namespace quorvel
