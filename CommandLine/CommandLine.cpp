#include "CommandLine/CommandLine.h"

#include "Base/TerminalText.h"
#include "CommandLine/ChangeCommands.h"
#include "CommandLine/CloneCommands.h"
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

using Command = std::function<void()>;

CLI::App& addCommand(CLI::App& program, const std::string& name, const std::string& help,
                     ParsedOptions& words, Command& chosen, Command run) {
    CLI::App* command = program.add_subcommand(name, help);
    command->add_flag("--json", words.json, "Print JSON");
    command->callback([&chosen, run = std::move(run)] { chosen = run; });
    return *command;
}

void addCloneOperand(CLI::App& command, ParsedOptions& words) {
    command
        .add_option("CLONE", words.operand, "A path to a wrapper, or the name of a listed clone")
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

void addAppOperand(CLI::App& command, ParsedOptions& words) {
    command
        .add_option("APP", words.operand,
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
void addAppCommands(CLI::App& program, ParsedOptions& words, Command& chosen,
                    const CommandContext& context) {
    addAppOperand(addCommand(program, "inspect", "Show the facts about an application", words,
                             chosen, [&] { inspectCommand(context, words.operand, words.json); }),
                  words);
    addRepeatable(addCommand(program, "apps", "List the installed applications", words, chosen,
                             [&] { appsCommand(context, words.searchDirs, words.json); }),
                  "--search-dir", "A folder to look in instead of the usual ones (repeatable)",
                  "DIR", words.searchDirs);
    CLI::App& probe = addCommand(
        program, "probe", "Try an application out, and recommend how to isolate it", words, chosen,
        [&] { probeCommand(context, words.operand, words.probe, words.json); });
    addAppOperand(probe, words);
    addProbeOptions(probe, words.probe);
    addCommand(program, "running", "List the running applications", words, chosen,
               [&] { runningCommand(context, words.bundleId, words.json); })
        .add_option("BUNDLE-ID", words.bundleId, "Only those with this identifier")
        ->type_name("");
}

void addRefreshOptions(CLI::App& refresh, RefreshOptions& options) {
    refresh.add_option("CLONE", options.clones, "Paths to wrappers, or names of listed clones")
        ->type_name("");
    refresh.add_flag("--all", options.all, "Every listed clone");
    addFile(refresh, "--runner", "The runner to put into the clones", options.runner);
}

// The commands that change existing clones.
void addChangeCommands(CLI::App& program, ParsedOptions& words, Command& chosen,
                       const CommandContext& context) {
    CLI::App& edit =
        addCommand(program, "edit", "Change a clone; what is not given stays", words, chosen,
                   [&] { editCommand(context, words.operand, words.edit, words.json); });
    addCloneOperand(edit, words);
    addEditOptions(edit, words.edit);
    CLI::App& rename =
        addCommand(program, "rename", "Give a clone another name", words, chosen,
                   [&] { renameCommand(context, words.operand, words.rename, words.json); });
    addCloneOperand(rename, words);
    rename.add_option("NAME", words.rename.name, "Its new name")->required()->type_name("");
    rename.add_flag("--move-data", words.rename.moveData,
                    "Give its data folder that name, too; the clone must not run");
    addRefreshOptions(
        addCommand(program, "refresh", "Bring clones up to date with Quorvel and their targets",
                   words, chosen, [&] { refreshCommand(context, words.refresh, words.json); }),
        words.refresh);
}

void addCloneCommands(CLI::App& program, ParsedOptions& words, Command& chosen,
                      const CommandContext& context) {
    CLI::App& list = addCommand(program, "list", "List the clones", words, chosen,
                                [&] { listCommand(context, words.list, words.json); });
    addRepeatable(list, "--search-dir",
                  "A folder to look in instead of ~/Applications (repeatable)", "DIR",
                  words.list.searchDirs);
    list.add_flag("--stale", words.list.stale,
                  "Only those that refresh would change, and what of them");
    addFile(list, "--runner", "With --stale: the runner that refresh would use", words.list.runner);
    addCloneOperand(addCommand(program, "show", "Show one clone", words, chosen,
                               [&] { showCommand(context, words.operand, words.json); }),
                    words);
    addCreateOptions(addCommand(program, "create", "Make a clone and print its path", words, chosen,
                                [&] { createCommand(context, words.create, words.json); }),
                     words.create);
    addCloneOperand(addCommand(program, "open", "Open a clone", words, chosen,
                               [&] { openCommand(context, words.operand, words.json); }),
                    words);
    CLI::App& remove = addCommand(program, "delete", "Delete a clone", words, chosen, [&] {
        deleteCommand(context, words.operand, words.remove, words.json);
    });
    addCloneOperand(remove, words);
    remove.add_flag("--including-data", words.remove.includingData, "Delete its data folder too");
    remove.add_flag("--yes", words.remove.yes, "Don't ask");
    addChangeCommands(program, words, chosen, context);
    addCloneOperand(addCommand(program, "migrate",
                               "Move a clone's own Downloads, Documents and Desktop files into "
                               "the user's folders, and share these from now on",
                               words, chosen,
                               [&] { migrateCommand(context, words.operand, words.json); }),
                    words);
    addIconOptions(addCommand(program, "icon", "Draw a text onto an icon", words, chosen,
                              [&] { iconCommand(context, words.icon, words.json); }),
                   words.icon);
}

void addDuplicateCommand(CLI::App& program, ParsedOptions& words, Command& chosen,
                         const CommandContext& context) {
    CLI::App& duplicate =
        addCommand(program, "duplicate", "Make a second clone like the first", words, chosen,
                   [&] { duplicateCommand(context, words.operand, words.duplicate, words.json); });
    addCloneOperand(duplicate, words);
    duplicate.add_option("NAME", words.duplicate.name, "The name of the new one")
        ->required()
        ->type_name("");
    duplicate.add_flag("--with-data", words.duplicate.withData, "Copy the data folder, too");
    addFile(duplicate, "--runner", "The runner to put into the clone", words.duplicate.runner);
}

// The commands about a clone's run.
void addRunCommands(CLI::App& program, ParsedOptions& words, Command& chosen,
                    const CommandContext& context) {
    CLI::App& stop =
        addCommand(program, "stop", "End everything that a clone runs", words, chosen,
                   [&] { stopCommand(context, words.operand, words.stop, words.json); });
    addCloneOperand(stop, words);
    stop.add_flag("--force", words.stop.force, "Kill what does not end when asked to");
    stop.add_option("--wait", words.stop.wait, "Seconds to wait before that (default: 10)")
        ->type_name("S")
        ->check(CLI::Range(0.0, 3600.0).description(""));
    CLI::App& log = addCommand(program, "log", "Print a clone's log", words, chosen, [&] {
        logCommand(context, words.operand, words.follow, words.json);
    });
    addCloneOperand(log, words);
    log.add_flag("--follow", words.follow, "Go on with what is added, until interrupted");
}

// Returns the usage of the command given, or of the whole program if none was.
std::string usage(const CLI::App& program) {
    const auto chosen = program.get_subcommands();
    return chosen.empty() ? program.help() : chosen.front()->help(program.get_name());
}

// Before such a command runs, what an interrupted change left is put right.
bool changesClones(const CLI::App& program) {
    const std::set<std::string> commands{"create", "duplicate", "edit",   "rename",
                                         "delete", "migrate",   "refresh"};
    const auto given = program.get_subcommands();
    return !given.empty() && commands.contains(given.front()->get_name());
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
    ParsedOptions words;
    Command chosen;
    addAppCommands(program, words, chosen, context);
    addCloneCommands(program, words, chosen, context);
    addDuplicateCommand(program, words, chosen, context);
    addRunCommands(program, words, chosen, context);
    try {
        std::vector<std::string> reversed = withEmptyValues(program, arguments);
        std::reverse(reversed.begin(), reversed.end());
        program.parse(std::move(reversed));
        if (changesClones(program)) {
            finishInterruptedChanges(context.registry.searchDirs());
        }
        chosen();
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
