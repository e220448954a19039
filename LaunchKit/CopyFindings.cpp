#include "LaunchKit/CopyFindings.h"

#include "Platform/files/DatabaseCount.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/FolderWalk.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/RegularFile.h"
#include "Platform/files/StagedFolder.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t largestText = std::size_t{1} << 20U;

std::string inAddresses(const std::string& path) {
    constexpr std::string_view plain = "/-_.~";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        if ((byte < 0x80 && std::isalnum(byte) != 0) ||
            plain.find(character) != std::string_view::npos) {
            text += character;
        } else {
            text.append(1, '%').append(1, digits[byte >> 4U]).append(1, digits[byte & 15U]);
        }
    }
    return text;
}

// The folder's path as files spell it: as it is, and in addresses.
std::vector<std::string> spellingsOf(const std::vector<fs::path>& folders) {
    std::vector<std::string> spellings;
    for (const fs::path& folder : folders) {
        spellings.push_back(folder.string());
        const std::string url = inAddresses(folder.string());
        if (url != folder.native()) {
            spellings.push_back(url);
        }
    }
    return spellings;
}

// "/home/me/Work 2" is another folder than "/home/me/Work", but a blank often ends a path.
bool endsPath(std::string_view text, std::size_t at) {
    const auto next = at < text.size() ? static_cast<unsigned char>(text[at]) : ' ';
    return next < 0x80 && std::isalnum(next) == 0 && next != '-' && next != '_' && next != '.' &&
           next != '%';
}

bool names(std::string_view text, const std::vector<std::string>& spellings) {
    return std::any_of(spellings.begin(), spellings.end(), [&](const std::string& spelling) {
        for (std::size_t at = text.find(spelling); at != std::string_view::npos;
             at = text.find(spelling, at + 1)) {
            if (endsPath(text, at + spelling.size())) {
                return true;
            }
        }
        return false;
    });
}

std::string readText(int folder, const char* name) {
    const RegularFile file = openRegularFile(name, O_RDONLY | O_NOFOLLOW, 0, folder);
    if (!file.isOpen() || file.size > largestText) {
        return {};
    }
    // The beginning of most files that are not text says so, and the rest need not be read.
    constexpr std::size_t head = 4096;
    std::string bytes;
    for (const std::size_t size : {std::min(head, file.size), file.size}) {
        bytes.resize(size);
        const ssize_t count = ::pread(file.descriptor(), bytes.data(), bytes.size(), 0);
        bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
        if (bytes.find('\0') != std::string::npos) {
            return {};
        }
    }
    return bytes;
}

// The first bytes of Chromium's encrypted values say whose key it is: "v11" is the keyring's.
void countLocked(const fs::path& file, const fs::path& scratch, CopyFindings& findings) {
    const fs::path name = file.filename();
    if (isSymbolicLink(file)) {
        return; // it may lead to the original
    }
    if (name == "Cookies") {
        findings.lockedCookies += countInDatabase(file, scratch,
                                                  "SELECT count(*) FROM cookies "
                                                  "WHERE substr(encrypted_value, 1, 3) = x'763131'")
                                      .value_or(0);
    } else if (name == "Login Data") {
        findings.lockedPasswords +=
            countInDatabase(file, scratch,
                            "SELECT count(*) FROM logins "
                            "WHERE substr(password_value, 1, 3) = x'763131'")
                .value_or(0);
    }
}

// What an interruption leaves there, the next copy removes.
std::unique_ptr<StagedFolder> scratchBeside(const fs::path& copy) {
    try {
        return std::make_unique<StagedFolder>(copy);
    } catch (const PlatformError&) {
        return nullptr;
    }
}

} // namespace

CopyFindings findingsIn(const fs::path& copy, const std::vector<fs::path>& originals) {
    CopyFindings findings;
    const FileHandle root(::open(copy.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    const auto mount = root.descriptor() < 0 ? std::nullopt : mountOf(root.descriptor());
    if (!mount) {
        return findings;
    }
    const std::vector<std::string> spellings = spellingsOf(originals);
    const std::unique_ptr<StagedFolder> scratch = scratchBeside(copy);
    FolderWalk walk(root.descriptor(), *mount);
    while (const auto step = walk.next()) {
        if (step->kind != FolderWalk::Kind::item) {
            continue;
        }
        if (names(linkTargetIn(step->folder, step->name).value_or(""), spellings) ||
            names(readText(step->folder, step->name), spellings)) {
            findings.namingOriginal.push_back(walk.path());
        }
        if (scratch) {
            countLocked(copy / walk.path(), scratch->path(), findings);
        }
    }
    std::sort(findings.namingOriginal.begin(), findings.namingOriginal.end());
    return findings;
}

} // namespace quorvel
