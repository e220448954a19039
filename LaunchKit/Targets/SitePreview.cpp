#include "LaunchKit/Targets/SitePreview.h"

#include "Base/TerminalText.h"
#include "LaunchKit/IconComposer.h"
#include "LaunchKit/Icons/SimplePng.h"
#include "LaunchKit/Launching/HelperProgram.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/PlatformError.h"
#include "Platform/processes/Process.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fcntl.h>

namespace quorvel {
namespace {

constexpr std::size_t longestName = 40;
constexpr std::size_t largestTitle = 4096;
constexpr std::size_t largestIcon = std::size_t{2} << 20U;
constexpr unsigned largestSide = 512;
// Short enough that cancelling feels immediate.
constexpr std::chrono::milliseconds nap{100};

std::string withoutLineEnd(std::string text) {
    while (text.ends_with('\n')) {
        text.pop_back();
    }
    return text;
}

// Returns the status; std::nullopt if the program was killed because it took too long.
std::optional<int> statusOf(Process& process, std::chrono::milliseconds patience,
                            const std::atomic<bool>* cancelled) {
    const auto isCancelled = [&] { return cancelled != nullptr && *cancelled; };
    std::optional<int> status;
    for (auto left = patience; !status && left.count() > 0 && !isCancelled(); left -= nap) {
        status = process.waitUntilExit(std::min(left, nap));
    }
    if (!status) {
        process.sendSignal(SIGKILL);
        (void)process.waitUntilExit();
        if (isCancelled()) {
            throw SitePreviewError("the question was cancelled");
        }
    }
    return status;
}

// Returns what the program printed if it failed.
std::optional<std::string> failureOf(const std::filesystem::path& program,
                                     const std::string& address,
                                     const std::filesystem::path& folder,
                                     std::chrono::milliseconds patience,
                                     const std::atomic<bool>* cancelled) {
    const std::string reasonFile = folder / "reason";
    const FileHandle output(
        ::open(reasonFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (output.descriptor() < 0) {
        throw PlatformError::fromErrno(reasonFile, "written");
    }
    Process::Options options;
    options.executable = program;
    options.arguments = {address, folder};
    options.standardOutput = Process::ToFile{output.descriptor()};
    options.standardError = Process::Discard{};
    Process process = Process::run(options);
    const auto status = statusOf(process, patience, cancelled);
    if (status == 0) {
        return std::nullopt;
    }
    // It also limits its own time.
    if (!status || *status == 128 + SIGALRM) {
        return "the site takes too long";
    }
    const std::string reason =
        withoutLineEnd(readFile(reasonFile, largestTitle).value_or(std::string()));
    return reason.empty()
               ? "the program that asks it has failed, with status " + std::to_string(*status)
               : reason;
}

// Writes the icon beside the picture, if the program has left one as it should.
std::optional<std::filesystem::path> writtenIcon(const std::filesystem::path& folder) {
    const auto picture = readFile(folder / "icon", largestIcon);
    if (!picture || !isSimplePng(*picture, largestSide)) {
        return std::nullopt; // a site without an icon is better than none
    }
    try {
        writeFile(folder / "site.icns", IconComposer::converted(folder / "icon", std::nullopt));
        return folder / "site.icns";
    } catch (const IconComposer::ComposeError&) {
        return std::nullopt;
    }
}

} // namespace

std::optional<std::filesystem::path> sitePreviewProgram(const Environment& session) {
    return helperProgram("quorvel-site-preview", "QUORVEL_SITE_PREVIEW", session);
}

std::string nameFromTitle(const std::string& title) {
    std::string name = withoutUnsafe(title, longestName);
    for (char& byte : name) {
        byte = byte == '/' || byte == ':' || byte == '\\' ? ' ' : byte;
    }
    const std::size_t first = name.find_first_not_of(" .");
    name.erase(0, std::min(first, name.size()));
    name.erase(name.find_last_not_of(' ') + 1);
    return name;
}

SitePreview fetchSitePreview(const std::filesystem::path& program, const std::string& address,
                             const std::filesystem::path& folder,
                             std::chrono::milliseconds patience,
                             const std::atomic<bool>* cancelled) {
    if (!folder.is_absolute()) {
        throw SitePreviewError("there is no folder for what it sends");
    }
    try {
        // As the clone will complete it.
        const std::string whole =
            address.find("://") == std::string::npos ? "https://" + address : address;
        if (const auto failure = failureOf(program, whole, folder, patience, cancelled)) {
            throw SitePreviewError(*failure);
        }
        return {nameFromTitle(readFile(folder / "title", largestTitle).value_or(std::string())),
                writtenIcon(folder)};
    } catch (const PlatformError& error) {
        throw SitePreviewError(error.description());
    }
}

} // namespace quorvel
