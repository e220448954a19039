#include "CommandLine/CreateOptions.h"

#include "CommandLine/CommandContext.h"
#include "CommandLine/OptionBinding.h"
#include "CommandLine/PathWords.h"
#include "LaunchKit/Changes/RequestCheck.h"
#include "Presentation/SystemWords.h"

#include <CLI/CLI.hpp>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

using OptionalText = std::optional<std::string>;

// Each of these adds an option with one value; an empty value counts as an absent option.
struct ValueOptions {
    CLI::App& command;

    void text(const char* name, OptionalText& to, const char* help, const char* placeholder) const {
        add(
            name, help, placeholder, [&to](const std::string& value) { to = value; }, to);
    }

    // A path that is kept in the configuration, where "~" is the home of the user who opens it.
    void path(const char* name, OptionalText& to, const char* help, const char* placeholder) const {
        add(
            name, help, placeholder,
            [&to](const std::string& value) { to = absolutePath(value).string(); }, to);
    }

    void file(const char* name, std::optional<fs::path>& to, const char* help,
              const char* placeholder) const {
        add(
            name, help, placeholder, [&to](const std::string& value) { to = absoluteFile(value); },
            to);
    }

private:
    template<typename Take, typename Value>
    void add(const char* name, const char* help, const char* placeholder, Take take,
             std::optional<Value>& to) const {
        command
            .add_option_function<std::string>(
                name,
                [take, &to](const std::string& value) {
                    if (value.empty()) {
                        to.reset();
                    } else {
                        take(value);
                    }
                },
                help)
            ->type_name(placeholder);
    }
};

// Later entries replace earlier ones of the same key.
void addPairs(std::map<std::string, std::string>& to, const std::vector<std::string>& entries,
              const std::string& option) {
    for (const std::string& text : entries) {
        setPair(to, text, option);
    }
}

void addTargetOptions(CLI::App& create, CreateOptions& options) {
    const ValueOptions add{create};
    WrapperFactory::Request& request = options.request;
    addChoice(create, "--kind", "What the clone opens", "KIND", request.kind);
    create.add_option("--name", request.displayName, "The clone's name")->type_name("NAME");
    add.text("--target", options.target, "The application to clone: a path, or an id or name",
             "APP");
    add.text("--url", request.url, "The address that a web clone opens", "URL");
    add.path("--open", request.openPath, "The file or folder that a file clone opens", "PATH");
    add.path("--command", request.commandPath, "The program that a command clone runs", "PATH");
    addRepeatable(create, "--arg", "An argument of the command (repeatable)", "A",
                  request.commandArgs);
    add.path("--workdir", request.workingDirectory, "The command's working directory", "DIR");
}

void addIconOptions(CLI::App& create, CreateOptions& options) {
    ValueOptions{create}.file("--icon", options.request.customIcon,
                              "An icon file to use instead of the target's", "FILE");
    create.add_flag("--hide-icon", options.request.hideWrapperIcon,
                    inSystemWords("CreateOptions", "Show no Dock icon"));
    create.add_option("--label", options.label.text, "A short text on the icon")->type_name("TEXT");
    create.add_option("--label-color", options.label.colorHex, "Its color (default: #FFFFFF)")
        ->type_name("HEX");
    addChoice(create, "--label-position", "Where it sits", "P", options.label.position);
}

void addArgumentOptions(CLI::App& create, CreateOptions& options) {
    addRepeatable(create, "--extra-arg",
                  "An argument for the target (repeatable; default: what its engine needs)", "A",
                  options.extraArgs);
    create.add_flag("--no-extra-args", options.noExtraArgs, "No arguments for the target at all");
    addRepeatable(create, "--env", "An environment variable (repeatable)", "K=V",
                  options.environment);
    create.add_flag("--no-default-env", options.noDefaultEnvironment,
                    "Without the variables that the target is known to need");
    addRepeatable(create, "--plist", "An entry of the property list (repeatable)", "K=V",
                  options.infoPlist);
}

void addSwitches(CLI::App& create, CloneOptions& options) {
    for (const CloneSwitch& each : cloneSwitches) {
        create.add_flag_callback(
            each.flag, [&options, &each] { options.*each.member = !each.defaultValue(); },
            inSystemWords(switchContext, each.help));
    }
}

void requireTarget(const WrapperFactory::Request& request) {
    const auto require = [&](ShortcutKind needing, const OptionalText& value, const char* option) {
        if (request.kind == needing && !value) {
            throw UsageError("--kind " + std::string(rawString(needing)) + " needs " + option);
        }
    };
    require(ShortcutKind::web, request.url, "--url");
    require(ShortcutKind::file, request.openPath, "--open");
    require(ShortcutKind::command, request.commandPath, "--command");
}

} // namespace

void addCreateOptions(CLI::App& create, CreateOptions& options) {
    WrapperFactory::Request& request = options.request;
    const ValueOptions add{create};
    addTargetOptions(create, options);
    add.path("--home", request.instanceHome, "The data folder (default: ~/QuorvelInstances/NAME)",
             "DIR");
    create.add_flag("--shared-home", options.sharedHome,
                    "The data folder may be another clone's, or the user's own");
    add.file("--output", request.outputDir, "Where the clone is put (default: ~/Applications)",
             "DIR");
    create.add_flag("--replace", options.replace, "Replace a clone of that name; its data stays");
    create.add_flag("--seed", options.seed, "Start with a copy of the original's data");
    add.text("--bundle-id", request.bundleId, "The clone's bundle identifier", "ID");
    addChoice(create, "--strategy", "How its data is kept apart", "STRATEGY", request.strategy);
    addIconOptions(create, options);
    addArgumentOptions(create, options);
    addSwitches(create, request);
    add.text("--links", request.links,
             "What opens its links: default (the default browser), inside, or another clone",
             "default|inside|CLONE");
    addFile(create, "--runner", "The runner to put into the clone", options.runner);
    create.add_flag("--launch", options.launch, "Open the clone at once");
}

WrapperFactory::Request requestFrom(const CreateOptions& options) {
    WrapperFactory::Request request = options.request;
    requireTarget(request);
    request.displayName = validatedCloneName(request.displayName);
    if (options.seed && request.kind != ShortcutKind::app) {
        throw UsageError("--seed is for clones of applications");
    }
    if (options.noExtraArgs && !options.extraArgs.empty()) {
        throw UsageError("--no-extra-args and --extra-arg can’t be used together");
    }
    if (options.noExtraArgs || !options.extraArgs.empty()) {
        request.extraArgs = options.extraArgs;
    }
    addPairs(request.environment, options.environment, "--env");
    addPairs(request.infoPlistOverrides, options.infoPlist, "--plist");
    if (!options.label.text.empty()) {
        request.iconLabel = options.label;
    }
    return request;
}

} // namespace quorvel
