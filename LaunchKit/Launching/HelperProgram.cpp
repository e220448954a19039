#include "LaunchKit/Launching/HelperProgram.h"

#include "Base/BundleLayout.h"
#include "Base/PathText.h"
#include "Base/Utf8.h"
#include "LaunchKit/Records/RecordReader.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/processes/Environment.h"
#include "Platform/processes/MainExecutable.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace quorvel {

// The part of a wrapper's notes that its runner reads.
struct HelperNote {
    std::optional<std::string> helpers{};
};

template<>
struct RecordTable<HelperNote> {
    static constexpr std::string_view name = "wrapper's notes";
    static constexpr auto fields =
        sortedByKey(std::array{Row<HelperNote>::of<&HelperNote::helpers>("helpers")});
};

namespace {

namespace fs = std::filesystem;

// Where they are installed, by this build and by packages.
constexpr std::array usualFolders{QUORVEL_LIBEXEC, "/usr/libexec/quorvel",
                                  "/usr/local/libexec/quorvel"};

// Returns the folder that is noted in the wrapper that this runner is in; empty if there is none.
std::string notedFolder(const std::string& wrapper) {
    constexpr std::size_t limit = 65536;
    std::optional<std::string> bytes = readFile(notesOf(wrapper), limit);
    HelperNote note;
    const bool isRead = bytes && readRecord(*bytes, note).empty();
    return isRead && note.helpers && note.helpers->starts_with('/') ? *note.helpers : "";
}

std::vector<std::string> foundFolders() {
    std::vector<std::string> folders;
    const fs::path own = mainExecutable().parent_path();
    const fs::path bundle = own.parent_path().parent_path();
    if (!own.empty()) {
        folders.push_back(own.parent_path() / "libexec/quorvel");
    }
    if (!bundle.empty() && own == executablesOf(bundle)) {
        folders.push_back(notedFolder(bundle));
    }
    folders.insert(folders.end(), usualFolders.begin(), usualFolders.end());
    std::erase(folders, "");
    return folders;
}

// The best first. A start looks for several programs, but reads its wrapper's notes once.
const std::vector<std::string>& helperFolders() {
    static const std::vector<std::string> folders = foundFolders();
    return folders;
}

} // namespace

std::optional<std::filesystem::path>
helperProgram(const std::string& name, const std::string& variable, const Environment& session) {
    std::vector<std::string> paths{valueOf(session, variable)};
    for (const std::string& folder : helperFolders()) {
        paths.push_back(joinAsText(folder, name));
    }
    for (const std::string& path : paths) {
        if (path.starts_with('/') && isExecutableFile(path)) {
            return path;
        }
    }
    return std::nullopt;
}

std::optional<std::filesystem::path>
helperModule(const std::string& name, const std::string& variable, const Environment& session) {
    const std::string named = valueOf(session, variable);
    if (!named.empty()) {
        return named.starts_with('/') && itemExists(named)
                   ? std::optional<std::filesystem::path>(named)
                   : std::nullopt;
    }
    for (const std::string& folder : helperFolders()) {
        if (std::string module = joinAsText(folder, name); itemExists(module)) {
            return module;
        }
    }
    return std::nullopt;
}

std::optional<std::string> unusualHelperFolder(const fs::path& runner) {
    std::string folder = runner.parent_path();
    const bool isUsual =
        std::find(usualFolders.begin(), usualFolders.end(), folder) != usualFolders.end();
    const bool isInstalled = folder.starts_with('/') && folder.ends_with("/libexec/quorvel");
    // Notes can only contain UTF-8.
    return isInstalled && !isUsual && isUtf8(folder) ? std::optional(std::move(folder))
                                                     : std::nullopt;
}

} // namespace quorvel
