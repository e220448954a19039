#include "LaunchKit/Copying/CopyFindings.h"

#include "Platform/files/DatabaseCount.h"
#include "Platform/files/PlatformError.h"
#include "Platform/staging/StagedFolder.h"

#include <algorithm>
#include <cctype>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Chromium's databases.
constexpr const char* cookies = "Cookies";
constexpr const char* passwords = "Login Data";

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

std::string readText(int file) {
    struct stat facts {};
    if (::fstat(file, &facts) != 0 || static_cast<std::size_t>(facts.st_size) > largestText) {
        return {};
    }
    // The beginning of most files that are not text says so, and the rest need not be read.
    constexpr std::size_t head = 4096;
    const auto whole = static_cast<std::size_t>(facts.st_size);
    std::string bytes;
    for (const std::size_t size : {std::min(head, whole), whole}) {
        bytes.resize(size);
        const ssize_t count = ::pread(file, bytes.data(), bytes.size(), 0);
        bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
        if (bytes.find('\0') != std::string::npos) {
            return {};
        }
    }
    return bytes;
}

bool mayBeDatabase(const fs::path& path) {
    const fs::path name = path.filename();
    return name == cookies || name == passwords;
}

// The first bytes of Chromium's encrypted values say whose key it is: "v11" is the keyring's.
void countLocked(const fs::path& file, const fs::path& scratch, CopyFindings& findings) {
    const fs::path name = file.filename();
    if (name == cookies) {
        findings.lockedCookies += countInDatabase(file, scratch,
                                                  "SELECT count(*) FROM cookies "
                                                  "WHERE substr(encrypted_value, 1, 3) = x'763131'")
                                      .value_or(0);
    } else if (name == passwords) {
        findings.lockedPasswords +=
            countInDatabase(file, scratch,
                            "SELECT count(*) FROM logins "
                            "WHERE substr(password_value, 1, 3) = x'763131'")
                .value_or(0);
    }
}

// The next copy removes what an interruption leaves there.
std::unique_ptr<StagedFolder> scratchBeside(const fs::path& copy) {
    try {
        return std::make_unique<StagedFolder>(copy);
    } catch (const PlatformError&) {
        return nullptr;
    }
}

} // namespace

CopySearch::CopySearch(const std::vector<fs::path>& originals)
    : spellings_(spellingsOf(originals)) {}

void CopySearch::lookAt(const CopiedContent& item, const std::string& below) {
    const bool isLink = item.file < 0;
    if (names(isLink ? item.target : readText(item.file), spellings_)) {
        naming_.push_back(below + item.path);
    }
    // A link may lead to the original.
    if (!isLink && mayBeDatabase(item.path)) {
        databases_.push_back(below + item.path);
    }
}

CopyFindings CopySearch::findings(const fs::path& copy) const {
    CopyFindings findings{.namingOriginal = naming_};
    std::sort(findings.namingOriginal.begin(), findings.namingOriginal.end());
    const auto scratch = databases_.empty() ? nullptr : scratchBeside(copy);
    for (const std::string& database : databases_) {
        if (scratch) {
            countLocked(copy / database, scratch->path(), findings);
        }
    }
    return findings;
}

} // namespace quorvel
