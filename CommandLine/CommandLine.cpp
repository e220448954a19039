#include "CommandLine/CommandLine.h"

#include "Base/TerminalText.h"
#include "CommandLine/ChangeCommands.h"
#include "CommandLine/CloneCommands.h"
#include "CommandLine/CreateCommand.h"
#include "CommandLine/DeleteCommand.h"
#include "CommandLine/DuplicateCommand.h"
#include "CommandLine/IconCommand.h"
#include "CommandLine/LogCommand.h"
#include "CommandLine/MigrateCommand.h"
#include "CommandLine/OptionBinding.h"
#include "CommandLine/ProbeCommands.h"
#include "CommandLine/StopCommand.h"
#include "LaunchKit/Changes/ChangeRecovery.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>
#include <ostream>
#include <set>
#include <utility>

namespace quorvel {
namespace {

// Everything that one command line may set.
struct ParsedOptions {
    std::string operand{};
    std::vector<std::string> searchDirs{};
    ListOptions list{};
    CreateOptions create{};
    EditOptions edit{};
    RenameOptions rename{};
    RefreshOptions refresh{};
    DeleteOptions remove{};
    IconOptions icon{};
    ProbeOptions probe{};
    DuplicateOptions duplicate{};
    StopCommandOptions stop{};
    bool follow = false;
    std::optional<std::string> bundleId{};
    bool json = false;
};

// Before a command that changes clones, what an interrupted change left is put right.
enum class Effect { none, changesClones };

struct Command {
    std::function<void()> run{};
    Effect effect = Effect::none;
};

// Adds commands to the program. The one that is given becomes `chosen`.
struct Commands {
    CLI::App& program;
    ParsedOptions& options;
    const CommandContext& context;
    Command& chosen;

    CLI::App& add(const std::string& name, const std::string& help, Effect effect,
                  std::function<void()> run) const {
        CLI::App* command = program.add_subcommand(name, help);
        command->add_flag("--json", options.json, "Print JSON");
        command->callback(
            [&to = chosen, command = Command{std::move(run), effect}] { to = command; });
        return *command;
    }
};

void addCloneOperand(CLI::App& command, ParsedOptions& options) {
    command
        .add_option("CLONE", options.operand, "A path to a wrapper, or the name of a listed clone")
        ->required()
        ->type_name("");
}

void addIconOptions(CLI::App& icon, IconOptions& o) {
    icon.add_option("SOURCE", o.source, "An icon, or any image")->required()->type_name("");
    icon.add_flag("--list", o.list, "Show the images in the icon instead");
    icon.add_option("--label", o.label, "The text to draw")->type_name("TEXT");
    icon.add_option("--color", o.color, "Its color (default: #FFFFFF)")->type_name("HEX");
    addChoice(icon, "--position", "Where it sits", "P", o.position);
    icon.add_option("--output", o.output, "The icon to write")->type_name("FILE");
}

void addAppOperand(CLI::App& command, ParsedOptions& options) {
    command
        .add_option("APP", options.operand,
                    "A path to an application, or the id or name of an installed one")
        ->required()
        ->type_name("");
}

void addProbeOptions(CLI::App& probe, ProbeOptions& o) {
    probe.add_option("--settle-a", o.settleA, "Seconds to watch the first copy (default: 7)")
        ->type_name("S")
        ->check(CLI::Range(0.0, 3600.0).description(""));
    probe.add_option("--settle-b", o.settleB, "Seconds to wait for the second (default: 2)")
        ->type_name("S")
        ->check(CLI::Range(0.0, 3600.0).description(""));
    probe.add_option("--real-library", o.realLibrary, "The folder to watch (default: ~/Library)")
        ->type_name("DIR");
}

// The commands about installed applications.
void addAppCommands(const Commands& commands) {
    ParsedOptions& options = commands.options;
    const CommandContext& context = commands.context;
    addAppOperand(commands.add("inspect", "Show the facts about an application", Effect::none,
                               [&] { inspectCommand(context, options.operand, options.json); }),
                  options);
    addRepeatable(commands.add("apps", "List the installed applications", Effect::none,
                               [&] { appsCommand(context, options.searchDirs, options.json); }),
                  "--search-dir", "A folder to look in instead of the usual ones (repeatable)",
                  "DIR", options.searchDirs);
    CLI::App& probe = commands.add(
        "probe", "Try an application out, and recommend how to isolate it", Effect::none,
        [&] { probeCommand(context, options.operand, options.probe, options.json); });
    addAppOperand(probe, options);
    addProbeOptions(probe, options.probe);
    commands
        .add("running", "List the running applications", Effect::none,
             [&] { runningCommand(context, options.bundleId, options.json); })
        .add_option("BUNDLE-ID", options.bundleId, "Only those with this identifier")
        ->type_name("");
}

void addRefreshOptions(CLI::App& refresh, RefreshOptions& options) {
    refresh.add_option("CLONE", options.clones, "Paths to wrappers, or names of listed clones")
        ->type_name("");
    refresh.add_flag("--all", options.all, "Every listed clone");
    addFile(refresh, "--runner", "The runner to put into the clones", options.runner);
}

// The commands that change existing clones.
void addChangeCommands(const Commands& commands) {
    ParsedOptions& options = commands.options;
    const CommandContext& context = commands.context;
    CLI::App& edit =
        commands.add("edit", "Change a clone; what is not given stays", Effect::changesClones,
                     [&] { editCommand(context, options.operand, options.edit, options.json); });
    addCloneOperand(edit, options);
    addEditOptions(edit, options.edit);
    CLI::App& rename =
        commands.add("rename", "Give a clone another name", Effect::changesClones, [&] {
            renameCommand(context, options.operand, options.rename, options.json);
        });
    addCloneOperand(rename, options);
    rename.add_option("NAME", options.rename.name, "Its new name")->required()->type_name("");
    rename.add_flag("--move-data", options.rename.moveData,
                    "Give its data folder that name, too; the clone must not run");
    addRefreshOptions(commands.add("refresh",
                                   "Bring clones up to date with Quorvel and their targets",
                                   Effect::changesClones,
                                   [&] { refreshCommand(context, options.refresh, options.json); }),
                      options.refresh);
}

void addCloneCommands(const Commands& commands) {
    ParsedOptions& options = commands.options;
    const CommandContext& context = commands.context;
    CLI::App& list = commands.add("list", "List the clones", Effect::none,
                                  [&] { listCommand(context, options.list, options.json); });
    addRepeatable(list, "--search-dir",
                  "A folder to look in instead of ~/Applications (repeatable)", "DIR",
                  options.list.searchDirs);
    list.add_flag("--stale", options.list.stale,
                  "Only those that refresh would change, and what of them");
    addFile(list, "--runner", "With --stale: the runner that refresh would use",
            options.list.runner);
    addCloneOperand(commands.add("show", "Show one clone", Effect::none,
                                 [&] { showCommand(context, options.operand, options.json); }),
                    options);
    addCreateOptions(commands.add("create", "Make a clone and print its path",
                                  Effect::changesClones,
                                  [&] { createCommand(context, options.create, options.json); }),
                     options.create);
    addCloneOperand(commands.add("open", "Open a clone", Effect::none,
                                 [&] { openCommand(context, options.operand, options.json); }),
                    options);
    CLI::App& remove = commands.add("delete", "Delete a clone", Effect::changesClones, [&] {
        deleteCommand(context, options.operand, options.remove, options.json);
    });
    addCloneOperand(remove, options);
    remove.add_flag("--including-data", options.remove.includingData, "Delete its data folder too");
    remove.add_flag("--yes", options.remove.yes, "Don't ask");
    addChangeCommands(commands);
    addCloneOperand(commands.add("migrate",
                                 "Move a clone's own Downloads, Documents and Desktop files into "
                                 "the user's folders, and share these from now on",
                                 Effect::changesClones,
                                 [&] { migrateCommand(context, options.operand, options.json); }),
                    options);
    addIconOptions(commands.add("icon", "Draw a text onto an icon", Effect::none,
                                [&] { iconCommand(context, options.icon, options.json); }),
                   options.icon);
}

void addDuplicateCommand(const Commands& commands) {
    ParsedOptions& options = commands.options;
    const CommandContext& context = commands.context;
    CLI::App& duplicate =
        commands.add("duplicate", "Make a second clone like the first", Effect::changesClones, [&] {
            duplicateCommand(context, options.operand, options.duplicate, options.json);
        });
    addCloneOperand(duplicate, options);
    duplicate.add_option("NAME", options.duplicate.name, "The name of the new one")
        ->required()
        ->type_name("");
    duplicate.add_flag("--with-data", options.duplicate.withData, "Copy the data folder, too");
    addFile(duplicate, "--runner", "The runner to put into the clone", options.duplicate.runner);
}

// The commands about a clone's run.
void addRunCommands(const Commands& commands) {
    ParsedOptions& options = commands.options;
    const CommandContext& context = commands.context;
    CLI::App& stop = commands.add("stop", "End everything that a clone runs", Effect::none, [&] {
        stopCommand(context, options.operand, options.stop, options.json);
    });
    addCloneOperand(stop, options);
    stop.add_flag("--force", options.stop.force, "Kill what does not end when asked to");
    stop.add_option("--wait", options.stop.wait, "Seconds to wait before that (default: 10)")
        ->type_name("S")
        ->check(CLI::Range(0.0, 3600.0).description(""));
    CLI::App& log = commands.add("log", "Print a clone's log", Effect::none, [&] {
        logCommand(context, options.operand, options.follow, options.json);
    });
    addCloneOperand(log, options);
    log.add_flag("--follow", options.follow, "Go on with what is added, until interrupted");
}

// Returns the usage of the command given, or of the whole program if none was.
std::string usage(const CLI::App& program) {
    const auto chosen = program.get_subcommands();
    return chosen.empty() ? program.help() : chosen.front()->help(program.get_name());
}

int showUsage(const CLI::App& program, const CommandContext& context, const std::string& message) {
    context.errors << terminalText(message) << "\n\n" << usage(program);
    return 2;
}

// Returns the options of all commands that take a value.
std::set<std::string> optionsWithValue(const CLI::App& program) {
    std::set<std::string> names;
    for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
        for (const CLI::Option* option : command->get_options()) {
            if (option->get_items_expected_max() > 0 && !option->get_lnames().empty()) {
                names.insert("--" + option->get_lnames().front());
            }
        }
    }
    return names;
}

// The parser expects the value of "--option=" in the next argument; here the value is empty.
std::vector<std::string> withEmptyValues(const CLI::App& program,
                                         const std::vector<std::string>& arguments) {
    const std::set<std::string> withValue = optionsWithValue(program);
    std::vector<std::string> result;
    bool options = true;
    bool isValue = false;
    for (const std::string& argument : arguments) {
        if (std::exchange(isValue, !isValue && options && withValue.contains(argument))) {
            result.push_back(argument);
            continue;
        }
        options = options && argument != "--";
        if (options && argument.size() > 3 && argument.starts_with("--") &&
            argument.find('=') == argument.size() - 1) {
            result.push_back(argument.substr(0, argument.size() - 1));
            result.emplace_back();
        } else {
            result.push_back(argument);
        }
    }
    return result;
}

} // namespace

int runCommandLine(const std::vector<std::string>& arguments, const CommandContext& context) {
    CLI::App program("Makes isolated copies of applications, and shortcuts.", "quorvelctl");
    program.set_version_flag("--version", "quorvelctl " QUORVEL_VERSION);
    program.require_subcommand(1);
    ParsedOptions options;
    Command chosen;
    const Commands commands{program, options, context, chosen};
    addAppCommands(commands);
    addCloneCommands(commands);
    addDuplicateCommand(commands);
    addRunCommands(commands);
    try {
        std::vector<std::string> reversed = withEmptyValues(program, arguments);
        std::reverse(reversed.begin(), reversed.end());
        program.parse(std::move(reversed));
        if (chosen.effect == Effect::changesClones) {
            finishInterruptedChanges(context.registry.searchDirs());
        }
        chosen.run();
        return 0;
    } catch (const CLI::CallForHelp&) {
        context.output << usage(program);
        return 0;
    } catch (const CLI::CallForVersion&) {
        context.output << program.version() << "\n";
        return 0;
    } catch (const CLI::ParseError& error) {
        return showUsage(program, context, error.what());
    } catch (const UsageError& error) {
        return showUsage(program, context, error.what());
    } catch (const std::exception& error) {
        context.errors << terminalText(error.what()) << "\n";
        return 1;
    }
}

} // namespace quorvel
