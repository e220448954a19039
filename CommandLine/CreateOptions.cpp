#include "CommandLine/CreateOptions.h"

#include "CommandLine/CloneLookup.h"
#include "CommandLine/CommandContext.h"
#include "LaunchKit/RequestCheck.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::optional<std::string> given(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(text);
}

// A path that is kept in the configuration, where "~" stands for the home of whoever opens it.
std::optional<std::string> givenPath(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(absolutePath(text).string());
}

std::optional<fs::path> givenFile(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(absoluteFile(text));
}

std::map<std::string, std::string> pairs(const std::vector<std::string>& texts,
                                         const char* option) {
    std::map<std::string, std::string> result;
    for (const std::string& text : texts) {
        const std::size_t equals = text.find('=');
        if (equals == std::string::npos || equals == 0) {
            throw UsageError(std::string(option) + " takes KEY=VALUE, not " + text);
        }
        result.insert_or_assign(text.substr(0, equals), text.substr(equals + 1));
    }
    return result;
}

template<typename Case>
Case known(const std::optional<Case>& value, const char* option, const std::string& text) {
    if (!value) {
        throw UsageError(std::string(option) + " does not know " + text);
    }
    return *value;
}

void requireTarget(ShortcutKind kind, const CreateOptions& options) {
    const auto require = [&](ShortcutKind needing, const std::string& value, const char* option) {
        if (kind == needing && value.empty()) {
            throw UsageError("--kind " + std::string(rawString(kind)) + " needs " + option);
        }
    };
    require(ShortcutKind::web, options.url, "--url");
    require(ShortcutKind::file, options.open, "--open");
    require(ShortcutKind::command, options.command, "--command");
}

std::optional<IconLabel> label(const CreateOptions& options) {
    if (options.label.empty()) {
        return std::nullopt;
    }
    return IconLabel{options.label, options.labelColor,
                     known(iconLabelPositionFromRawString(options.labelPosition),
                           "--label-position", options.labelPosition)};
}

} // namespace

WrapperFactory::Request requestFrom(const CreateOptions& options) {
    WrapperFactory::Request request;
    request.kind = known(shortcutKindFromRawString(options.kind), "--kind", options.kind);
    requireTarget(request.kind, options);
    request.targetApp = givenFile(options.target);
    request.displayName = checkedCloneName(options.name);
    request.url = given(options.url);
    request.openPath = givenPath(options.open);
    request.commandPath = givenPath(options.command);
    request.commandArgs = options.commandArgs;
    request.workingDirectory = givenPath(options.workingDirectory);
    request.instanceHome = givenPath(options.home);
    request.outputDir = givenFile(options.output);
    request.bundleId = given(options.bundleId);
    request.strategy =
        known(strategyFromRawString(options.strategy), "--strategy", options.strategy);
    request.customIcon = givenFile(options.icon);
    request.hideWrapperIcon = options.hideIcon;
    if (options.noExtraArgs && !options.extraArgs.empty()) {
        throw UsageError("--no-extra-args and --extra-arg exclude each other");
    }
    if (options.noExtraArgs || !options.extraArgs.empty()) {
        request.extraArgs = options.extraArgs;
    }
    request.environment = pairs(options.environment, "--env");
    request.infoPlistOverrides = pairs(options.plist, "--plist");
    request.registerAsBrowser = options.browser;
    request.openWithPassthrough = options.openWith;
    request.iconLabel = label(options);
    request.menuBarIcon = options.menuBarIcon;
    request.menuBarIconTemplate = options.menuBarTemplate;
    request.shareUserFolders = !options.isolateFolders;
    return request;
}

} // namespace quorvel
