#include "LaunchKit/Targets/DesktopTarget.h"

#include "Base/BundleName.h"
#include "Base/PathText.h"
#include "Platform/files/PlatformError.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// A program is shown as the entry names it.
std::string missing(const std::string& program) {
    return "its program “" + program + "” is not installed";
}

// Returns why the entry is not an application that can be started.
std::optional<std::string> objection(const DesktopEntry& entry) {
    if (entry.type != "Application") {
        return "it is not an application";
    }
    if (entry.hidden) {
        return "it is marked as deleted";
    }
    if (!entry.tryExec.empty() && !findProgram(entry.tryExec)) {
        return missing(entry.tryExec);
    }
    return std::nullopt;
}

DesktopTarget resolved(const fs::path& file, DesktopEntry entry) {
    if (const auto reason = objection(entry)) {
        throw PlatformError::because(*reason, file, "used");
    }
    ExecLine line = ExecLine::parse(entry.exec);
    auto program = resolveProgram(entry, line);
    if (!program) {
        throw PlatformError::because(missing(line.program), file, "used");
    }
    return {file, std::move(entry), std::move(line), std::move(*program)};
}

} // namespace

std::optional<std::vector<ExecLine::Word>> actionWords(const ExecLine& main,
                                                       const DesktopAction& action) {
    try {
        ExecLine line = ExecLine::parse(action.exec);
        return line.program == main.program ? std::optional(std::move(line.words)) : std::nullopt;
    } catch (const ExecLineError&) {
        return std::nullopt;
    }
}

DesktopTarget DesktopTarget::readEntry(const fs::path& file) {
    DesktopEntry entry = readDesktopEntry(file);
    try {
        return resolved(file, std::move(entry));
    } catch (const ExecLineError& error) {
        throw PlatformError::because("in its command, " + error.description(), file, "used");
    }
}

DesktopTarget DesktopTarget::readAppImage(const fs::path& file) {
    auto program = resolveProgram(file.native());
    if (!program) {
        throw PlatformError::because("it is not marked as executable", file, "used");
    }
    DesktopTarget target{file, {}, {}, std::move(*program)};
    target.entry.name = bundleFallbackName(file);
    target.line.program = file.native();
    return target;
}

std::optional<std::string> DesktopTarget::obstacle() const {
    if (entry.terminal) {
        return "it runs in a terminal";
    }
    if (program.packaging == ResolvedProgram::Packaging::snap) {
        return "it is a Snap, whose data stays in the user’s own home";
    }
    if (!program.portableFolders.empty()) {
        return "it would use “" + program.portableFolders.front().string() +
               "” instead of the clone’s own folder; rename or remove that first";
    }
    return std::nullopt;
}

std::vector<std::string> DesktopTarget::arguments(const std::vector<std::string>& engineArguments,
                                                  const std::vector<std::string>& documents,
                                                  bool withoutBus) const {
    const ExecLine::Fields fields{entry.icon, entry.name, file.native()};
    const bool takesItems = line.takesItems();
    auto all =
        lineForDocuments().toArguments(takesItems ? documents : std::vector<std::string>{}, fields);
    const auto place = static_cast<std::ptrdiff_t>(line.engineArgumentsIndex(all));
    all.insert(all.begin() + place, engineArguments.begin(), engineArguments.end());
    if (!takesItems) {
        all.insert(all.end(), documents.begin(), documents.end());
    }
    if (program.packaging == ResolvedProgram::Packaging::flatpak && !all.empty() &&
        all.front() == "run") {
        std::vector<std::string> options;
        if (withoutBus) {
            options = {"--no-session-bus", "--nosocket=session-bus"};
        }
        // Otherwise the application goes on when the clone is asked to quit.
        options.emplace_back("--die-with-parent");
        all.insert(all.begin() + 1, options.begin(), options.end());
    }
    return all;
}

// Desktops start an entry once for each document where it takes one. Of a clone, one start must do.
ExecLine DesktopTarget::lineForDocuments() const {
    const bool isBrowser = program.engine == ResolvedProgram::Engine::chromium ||
                           program.engine == ResolvedProgram::Engine::firefox;
    return isBrowser ? line.takingSeveral() : line;
}

std::size_t DesktopTarget::documentsLeftOut(std::size_t count) const {
    const bool takesOne = line.takesItems() && !lineForDocuments().takesSeveral();
    return takesOne && count > 1 ? count - 1 : 0;
}

void DesktopTarget::chooseAction(const std::string& id) {
    for (const DesktopAction& action : entry.actions) {
        if (action.id != id) {
            continue;
        }
        if (auto words = actionWords(line, action)) {
            line.words = std::move(*words);
        }
    }
}

} // namespace quorvel
