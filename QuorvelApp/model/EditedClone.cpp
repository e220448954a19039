#include "QuorvelApp/model/EditedClone.h"

#include "Base/OptionalText.h"
#include "Base/Text.h"
#include "LaunchKit/Changes/CloneRevision.h"
#include "LaunchKit/InstanceRecord.h"
#include "Platform/homes/UserPaths.h"
#include "Presentation/CloneFacts.h"
#include "QuorvelApp/model/FormTexts.h"
#include "QuorvelApp/model/Translated.h"

#include <QCoreApplication>

#include <utility>

namespace quorvel {
namespace {

namespace fs = std::filesystem;
using Pairs = std::map<std::string, std::string>;

std::optional<fs::path> ownIconOf(const fs::path& wrapper, const CloneRevision& clone) {
    auto icon = InstanceRecord{wrapper, clone.old().settings().config}.iconURL();
    const auto& notes = clone.old().notes();
    const bool isTargets = notes && notes->icon == IconSource::target &&
                           notes->writtenIcon == fileHash(icon.value_or(fs::path()));
    return isTargets ? std::nullopt : icon;
}

InstalledApp targetOf(const CloneRevision& clone) {
    const fs::path url = clone.old().settings().config.targetAppURL();
    const auto& app = clone.old().target();
    const bool isNamed = app && app->desktop && !app->desktop->entry.name.empty();
    return {.url = url,
            .name =
                isNamed ? app->desktop->entry.name : sourceSummary(clone.old().settings().config),
            .bundleId = app ? app->bundleId : std::string()};
}

std::string shortPath(const std::string& path) {
    const std::string home = UserPaths::home();
    return path.starts_with(home + "/") ? "~" + path.substr(home.size()) : path;
}

bool isWhole(const Pairs& pairs, const std::string& text) {
    return parseKeyValues(text).size() == pairs.size();
}

// Collects the edits between two states of a form.
class Differences {
public:
    Differences(const NewCloneForm& before, const NewCloneForm& after)
        : before_(before),
          after_(after) {}

    template<typename Value, typename Set>
    void add(const Value& before, const Value& after, Set set) {
        if (before != after) {
            edits_.push_back([set, after](CloneSettings& settings) { set(settings, after); });
        }
    }

    // A field whose blanks at both ends don't count.
    void addTrimmed(std::string NewCloneForm::*field,
                    std::optional<std::string> CloneTarget::*member) {
        add(Text::trimmingWhitespace(before_.*field), Text::trimmingWhitespace(after_.*field),
            [member](CloneSettings& s, const std::string& text) { s.config.*member = text; });
    }

    void addPairs(std::string NewCloneForm::*field, Pairs CloneOptions::*member) {
        const Pairs before = parseKeyValues(before_.*field);
        const Pairs after = parseKeyValues(after_.*field);
        for (const auto& [key, value] : before) {
            if (!after.contains(key)) {
                edits_.push_back(
                    [member, key = key](CloneSettings& s) { (s.config.*member).erase(key); });
            }
        }
        for (const auto& [key, value] : after) {
            const auto old = before.find(key);
            add(old == before.end() ? std::nullopt : std::optional(old->second),
                std::optional(value),
                [member, key = key](CloneSettings& s, const std::optional<std::string>& set) {
                    (s.config.*member).insert_or_assign(key, set.value_or(""));
                });
        }
    }

    void addTarget() {
        addTrimmed(&NewCloneForm::webURL, &CloneTarget::url);
        addTrimmed(&NewCloneForm::filePath, &CloneTarget::openPath);
        addTrimmed(&NewCloneForm::commandPathText, &CloneTarget::commandPath);
        add(splitOutsideQuotes(before_.commandArgsText), splitOutsideQuotes(after_.commandArgsText),
            [](CloneSettings& s, const auto& words) {
                s.config.commandArgs = words.value_or(s.config.commandArgs);
            });
        add(before_.workdir, after_.workdir, [](CloneSettings& s, const std::string& folder) {
            s.config.workingDirectory = nothingIfEmpty(folder);
        });
    }

    void addOptions() {
        add(before_.strategy, after_.strategy,
            [](CloneSettings& s, Strategy strategy) { s.config.strategy = strategy; });
        addPairs(&NewCloneForm::envText, &CloneOptions::environment);
        addPairs(&NewCloneForm::plistText, &CloneOptions::infoPlistOverrides);
        add(before_.links, after_.links,
            [](CloneSettings& s, const auto& links) { s.config.links = links; });
        add(before_.hideDockIcon, after_.hideDockIcon,
            [](CloneSettings& s, bool hides) { s.hidesIcon = hides; });
        for (const CloneSwitch& each : cloneSwitches) {
            add(each.valueIn(before_), each.valueIn(after_),
                [member = each.member](CloneSettings& s, bool on) { s.config.*member = on; });
        }
    }

    void addIcon() {
        if (after_.customIcon) {
            edits_.push_back([icon = *after_.customIcon](CloneSettings& s) {
                s.icon = IconChoice::file;
                s.iconFile = icon;
            });
        } else if (before_.edited->ownIcon && !after_.edited->ownIcon) {
            edits_.push_back([](CloneSettings& s) { s.icon = IconChoice::target; });
        }
        add(before_.label(), after_.label(),
            [before = before_.label().value_or(IconLabel())](CloneSettings& s, const auto& wanted) {
                if (!wanted) {
                    s.config.iconLabel.reset();
                    return;
                }
                IconLabel label = s.config.iconLabel.value_or(*wanted);
                label.text = wanted->text == before.text ? label.text : wanted->text;
                label.colorHex =
                    wanted->colorHex == before.colorHex ? label.colorHex : wanted->colorHex;
                label.position = wanted->position;
                s.config.iconLabel = std::move(label);
            });
    }

    // Blank arguments mean the engine's, as in a new clone.
    void addArguments(bool hadEngines) {
        const auto words = splitOutsideQuotes(after_.argsText);
        if (!words || words == splitOutsideQuotes(before_.argsText) ||
            (words->empty() && hadEngines)) {
            return;
        }
        const bool areEngines = words->empty() && after_.shortcutType == ShortcutKind::app;
        edits_.push_back([words = *words, areEngines](CloneSettings& s) {
            s.arguments = areEngines ? ArgumentSource::engine : ArgumentSource::typed;
            s.restoresArguments = areEngines;
            s.config.extraArgs = areEngines ? s.config.extraArgs : words;
        });
    }

    std::vector<CloneEdit> taken() { return std::move(edits_); }

private:
    const NewCloneForm& before_;
    const NewCloneForm& after_;
    std::vector<CloneEdit> edits_{};
};

} // namespace

EditedClone EditedClone::read(const fs::path& wrapper) {
    const CloneRevision clone(wrapper);
    EditedClone read{.wrapper = wrapper,
                     .settings = clone.old().settings(),
                     .hasUsersArguments = clone.old().hasUsersArguments(),
                     .ownIcon = ownIconOf(clone.wrapper(), clone)};
    if (read.settings.config.kind == ShortcutKind::app) {
        read.target = targetOf(clone);
    }
    return read;
}

bool EditedClone::hasEngineArguments() const {
    return settings.arguments == ArgumentSource::engine && !hasUsersArguments;
}

NewCloneForm EditedClone::form() const {
    const InstanceConfig& config = settings.config;
    NewCloneForm form;
    static_cast<CloneOptions&>(form) = static_cast<const CloneOptions&>(config);
    form.shortcutType = config.kind;
    form.selected = target;
    form.webURL = config.url.value_or("");
    form.filePath = config.openPath.value_or("");
    form.commandPathText = config.commandPath.value_or("");
    form.commandArgsText = quotedWords(config.commandArgs);
    form.workdir = config.workingDirectory.value_or("");
    form.cloneName = config.displayName;
    form.dataPath = config.instanceHome;
    form.argsText = quotedWords(config.extraArgs);
    form.envText = keyValueText(config.environment);
    form.plistText = keyValueText(config.infoPlistOverrides);
    form.hideDockIcon = settings.hidesIcon;
    if (config.iconLabel) {
        form.iconLabelText = config.iconLabel->text;
        form.iconLabelColor = config.iconLabel->colorHex;
        form.iconLabelPosition = config.iconLabel->position;
    }
    form.edited =
        EditedCloneFacts{.wrapper = wrapper,
                         .place = shortPath(wrapper.string()),
                         .ownIcon = ownIcon,
                         .hidesVariables = !isWhole(config.environment, form.envText),
                         .hidesEntries = !isWhole(config.infoPlistOverrides, form.plistText)};
    return form;
}

std::vector<CloneEdit> EditedClone::edits(const NewCloneForm& form) const {
    const NewCloneForm before = this->form();
    Differences differences(before, form);
    differences.addTarget();
    differences.addOptions();
    differences.addIcon();
    differences.addArguments(hasEngineArguments());
    return differences.taken();
}

ChangedClone EditedClone::save(const std::vector<CloneEdit>& edits) const {
    return editClone(wrapper, [&](CloneSettings& now) {
        if (now.config.json() != settings.config.json() || now.hidesIcon != settings.hidesIcon ||
            now.arguments != settings.arguments) {
            throw Error(sentence(QCoreApplication::translate(
                                     "EditedClone",
                                     "“%1” has been changed in the meantime. Close this sheet and "
                                     "edit the clone again; nothing was saved."),
                                 {settings.config.displayName}));
        }
        for (const CloneEdit& edit : edits) {
            edit(now);
        }
    });
}

bool isValidEdit(const NewCloneForm& form) {
    return form.hasTarget() && splitOutsideQuotes(form.argsText) &&
           splitOutsideQuotes(form.commandArgsText);
}

} // namespace quorvel
