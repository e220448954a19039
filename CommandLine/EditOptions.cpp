#include "CommandLine/EditOptions.h"

#include "Base/OptionalText.h"
#include "CommandLine/CloneLookup.h"
#include "CommandLine/CommandContext.h"
#include "CommandLine/OptionBinding.h"
#include "CommandLine/PathWords.h"
#include "Presentation/SystemWords.h"

#include <CLI/CLI.hpp>

#include <utility>

namespace quorvel {
namespace {

using TextEdit = std::function<void(CloneSettings& settings, const std::string& value)>;
using OptionalText = std::optional<std::string>;

// The options of one command, each of which adds an edit when it is given.
struct EditBinding {
    CLI::App& command;
    EditOptions& options;

    void text(const char* name, const char* help, const char* placeholder, TextEdit edit) const {
        command
            .add_option_function<std::string>(
                name,
                [&edits = options.edits, edit = std::move(edit)](const std::string& value) {
                    edits.push_back([edit, value](CloneSettings& s) { edit(s, value); });
                },
                help)
            ->trigger_on_parse()
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
            ->type_name(placeholder);
    }

    void flag(const std::string& name, const std::string& help, CloneEdit edit) const {
        command.add_flag_callback(
            name, [&edits = options.edits, edit = std::move(edit)] { edits.push_back(edit); },
            help);
    }
};

void requireKind(const CloneSettings& settings, ShortcutKind kind, const char* option) {
    if (settings.config.kind != kind) {
        throw UsageError(std::string(option) + " is for clones of kind " +
                         std::string(rawString(kind)));
    }
}

std::string required(const std::string& value, const char* option) {
    if (value.empty()) {
        throw UsageError(std::string(option) + " must not be empty");
    }
    return value;
}

void addTargetOptions(const EditBinding& add) {
    add.text("--url", "The address that a web clone opens", "URL",
             [](CloneSettings& s, const std::string& value) {
                 requireKind(s, ShortcutKind::web, "--url");
                 s.config.url = required(value, "--url");
             });
    add.text("--open", "The file or folder that a file clone opens", "PATH",
             [](CloneSettings& s, const std::string& value) {
                 requireKind(s, ShortcutKind::file, "--open");
                 s.config.openPath = absolutePath(required(value, "--open")).string();
             });
    add.text("--command", "The program that a command clone runs", "PATH",
             [](CloneSettings& s, const std::string& value) {
                 requireKind(s, ShortcutKind::command, "--command");
                 s.config.commandPath = absolutePath(required(value, "--command")).string();
             });
    add.flag("--no-args", "No arguments for the command", [](CloneSettings& s) {
        requireKind(s, ShortcutKind::command, "--no-args");
        s.config.commandArgs.clear();
    });
    addRepeatable(add.command, "--arg",
                  "An argument of the command, instead of all that it had (repeatable)", "A",
                  add.options.arguments);
    add.text("--workdir", "The command's working directory; empty for none", "DIR",
             [](CloneSettings& s, const std::string& value) {
                 requireKind(s, ShortcutKind::command, "--workdir");
                 s.config.workingDirectory = nothingIfEmpty(absolutePath(value).string());
             });
}

void addIconOptions(const EditBinding& add) {
    add.text("--icon", "An icon file to use; empty for the target's icon", "FILE",
             [](CloneSettings& s, const std::string& value) {
                 s.icon = value.empty() ? IconChoice::target : IconChoice::file;
                 s.iconFile = value.empty() ? std::filesystem::path() : absoluteFile(value);
             });
    add.flag("--hide-icon", inSystemWords("CreateOptions", "Show no Dock icon"),
             [](CloneSettings& s) { s.hidesIcon = true; });
    add.flag("--no-hide-icon", "Show the icon again",
             [](CloneSettings& s) { s.hidesIcon = false; });
    add.text("--label", "A short text on the icon; empty for none", "TEXT",
             [](CloneSettings& s, const std::string& value) {
                 IconLabel label = s.config.iconLabel.value_or(IconLabel{.colorHex = "#FFFFFF"});
                 label.text = value;
                 s.config.iconLabel = value.empty() ? std::nullopt : std::optional(label);
             });
    add.command
        .add_option_function<std::string>(
            "--label-color",
            [&options = add.options](const std::string& value) { options.labelColor = value; },
            "Its color")
        ->type_name("HEX");
    addChoice(add.command, "--label-position", "Where it sits", "P",
              {enumNames<IconLabel::Position>.begin(), enumNames<IconLabel::Position>.end()},
              [&options = add.options](const std::string& value) {
                  options.labelPosition = caseNamed<IconLabel::Position>(value);
              });
}

void addArgumentOptions(const EditBinding& add) {
    addRepeatable(add.command, "--extra-arg",
                  "An argument for the target, instead of all that it had (repeatable)", "A",
                  add.options.extraArgs);
    add.flag("--no-extra-args", "No arguments for the target at all", [](CloneSettings& s) {
        s.config.extraArgs.clear();
        s.arguments = ArgumentSource::typed;
    });
    add.flag("--default-extra-args", "The arguments that the target's engine needs",
             [](CloneSettings& s) {
                 requireKind(s, ShortcutKind::app, "--default-extra-args");
                 s.arguments = ArgumentSource::engine;
                 s.restoresArguments = true;
             });
    add.text("--env", "Set an environment variable (repeatable)", "K=V",
             [](CloneSettings& s, const std::string& value) {
                 setPair(s.config.environment, value, "--env");
             });
    add.text("--unset-env", "Remove an environment variable (repeatable)", "K",
             [](CloneSettings& s, const std::string& value) { s.config.environment.erase(value); });
    add.text("--plist", "Set an entry of the property list (repeatable)", "K=V",
             [](CloneSettings& s, const std::string& value) {
                 setPair(s.config.infoPlistOverrides, value, "--plist");
             });
    add.text("--unset-plist", "Remove such an entry (repeatable)", "K",
             [](CloneSettings& s, const std::string& value) {
                 s.config.infoPlistOverrides.erase(value);
             });
}

// "--browser" and "--no-browser".
void addSwitches(const EditBinding& add) {
    for (const CloneSwitch& each : cloneSwitches) {
        const auto setTo = [member = each.member](bool value) {
            return [member, value](CloneSettings& s) { s.config.*member = value; };
        };
        add.flag(each.flag, inSystemWords(switchContext, each.help), setTo(!each.defaultValue()));
        const std::string flag = each.flag;
        add.flag("--no-" + flag.substr(2), "Turn " + flag + " off", setTo(each.defaultValue()));
    }
}

void editLabel(const EditOptions& options, CloneSettings& settings) {
    std::optional<IconLabel>& label = settings.config.iconLabel;
    if ((options.labelColor || options.labelPosition) && !label) {
        throw UsageError("--label-color and --label-position need a label");
    }
    if (label) {
        label->colorHex = options.labelColor.value_or(label->colorHex);
        label->position = options.labelPosition.value_or(label->position);
    }
}

} // namespace

void addEditOptions(CLI::App& command, EditOptions& options) {
    const EditBinding add{command, options};
    addTargetOptions(add);
    addChoice(command, "--strategy", "How its data is kept apart", "STRATEGY",
              {enumNames<Strategy>.begin(), enumNames<Strategy>.end()},
              [&options](const std::string& name) {
                  options.edits.push_back([strategy = caseNamed<Strategy>(name)](CloneSettings& s) {
                      s.config.strategy = strategy.value_or(s.config.strategy);
                  });
              });
    addIconOptions(add);
    addArgumentOptions(add);
    addSwitches(add);
    command
        .add_option_function<std::string>(
            "--links", [&options](const std::string& value) { options.links = value; },
            "What opens its links: default (the default browser), inside, or another clone")
        ->type_name("default|inside|CLONE");
    addFile(command, "--runner", "The runner to put into the clone", options.runner);
}

CloneEdit editFrom(const EditOptions& options, const InstanceRegistry& registry) {
    const std::optional<OptionalText> links =
        options.links ? std::optional(linksChoice(registry, options.links)) : std::nullopt;
    return [options, links](CloneSettings& settings) {
        for (const CloneEdit& edit : options.edits) {
            edit(settings);
        }
        if (!options.arguments.empty()) {
            requireKind(settings, ShortcutKind::command, "--arg");
            settings.config.commandArgs = options.arguments;
        }
        if (!options.extraArgs.empty()) {
            settings.config.extraArgs = options.extraArgs;
            settings.arguments = ArgumentSource::typed;
        }
        if (links) {
            settings.config.links = *links;
        }
        if (options.runner) {
            settings.runner = options.runner;
        }
        editLabel(options, settings);
    };
}

} // namespace quorvel
