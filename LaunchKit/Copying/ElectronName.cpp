#include "LaunchKit/Copying/ElectronName.h"

#include "Platform/files/FileReading.h"
#include "Platform/files/RegularFile.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t largestPart = std::size_t{8} << 20U;

std::string readAt(const RegularFile& file, std::uint64_t offset, std::uint64_t size) {
    if (size > largestPart || offset > file.size || size > file.size - offset) {
        return {};
    }
    std::string bytes(size, '\0');
    const ssize_t count =
        ::pread(file.descriptor(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
    return count == static_cast<ssize_t>(size) ? bytes : std::string();
}

std::uint32_t numberAt(const std::string& bytes, std::size_t offset) {
    std::uint32_t number = 0;
    std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
}

nlohmann::json parsed(const std::string& text) {
    return nlohmann::json::parse(text, nullptr, false);
}

std::string textIn(const nlohmann::json& object, const char* key) {
    return object.is_object() && object.contains(key) && object[key].is_string()
               ? object[key].get<std::string>()
               : std::string();
}

// Returns the package's description in an archive: four numbers, the last of which is the length of
// the table of contents that follows; then the files.
std::string packageIn(const fs::path& archive) {
    constexpr std::size_t numbers = 16;
    constexpr std::uint64_t behindSize = 8;
    const RegularFile file = openRegularFile(archive, O_RDONLY);
    const std::string head = file.isOpen() ? readAt(file, 0, numbers) : std::string();
    if (head.empty()) {
        return {};
    }
    const nlohmann::json table = parsed(readAt(file, numbers, numberAt(head, 12)));
    if (!table.is_object() || !table.contains("files") || !table["files"].is_object() ||
        !table["files"].contains("package.json")) {
        return {};
    }
    const nlohmann::json& entry = table["files"]["package.json"];
    const std::string offset = textIn(entry, "offset");
    std::uint64_t start = 0;
    const auto number = std::from_chars(offset.data(), offset.data() + offset.size(), start);
    if (offset.empty() || number.ec != std::errc() || start > file.size ||
        !entry.contains("size") || !entry["size"].is_number_unsigned()) {
        return {};
    }
    return readAt(file, behindSize + numberAt(head, 4) + start, entry["size"].get<std::uint64_t>());
}

} // namespace

std::optional<std::string> electronName(const fs::path& folder) {
    std::string text = packageIn(folder / "resources/app.asar");
    if (text.empty()) {
        text = readFile(folder / "resources/app/package.json", largestPart).value_or("");
    }
    const nlohmann::json package = parsed(text);
    std::string name = textIn(package, "productName");
    if (name.empty()) {
        name = textIn(package, "name");
    }
    const bool isName = !name.empty() && name != "." && name != ".." &&
                        name.find('/') == std::string::npos && name.find('\0') == std::string::npos;
    return isName ? std::optional(std::move(name)) : std::nullopt;
}

} // namespace quorvel
