#include "QuorvelApp/model/NewCloneForm.h"

#include "Base/OptionalText.h"
#include "Base/PathText.h"
#include "Base/SplitText.h"
#include "Base/Text.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Targets/NoSessionBus.h"
#include "Platform/desktop/UserLocale.h"
#include "Presentation/AppTexts.h"
#include "Presentation/CloneNaming.h"
#include "Presentation/JoinedText.h"
#include "Presentation/StrategyTexts.h"
#include "QuorvelApp/model/FormTexts.h"
#include "QuorvelApp/model/Translated.h"

#include <algorithm>
#include <iterator>

namespace quorvel {
namespace {

using Text::trimmingWhitespace;

bool isBlank(std::string_view text) {
    return trimmingWhitespace(text).empty();
}

void fillTarget(WrapperFactory::Request& request, const NewCloneForm& form) {
    switch (form.shortcutType) {
    case ShortcutKind::app:
        request.targetApp = form.selected ? std::optional(form.selected->url) : std::nullopt;
        break;
    case ShortcutKind::web:
        request.url = trimmingWhitespace(form.webURL);
        break;
    case ShortcutKind::file:
        request.openPath = trimmingWhitespace(form.filePath);
        break;
    case ShortcutKind::command:
        request.commandPath = trimmingWhitespace(form.commandPathText);
        request.commandArgs = splitIntoWords(form.commandArgsText);
        // Only this text is used as typed, including its spaces.
        request.workingDirectory = nothingIfEmpty(form.workdir);
        break;
    }
}

} // namespace

bool NewCloneForm::hasTarget() const {
    switch (shortcutType) {
    case ShortcutKind::web:
        return !isBlank(webURL);
    case ShortcutKind::file:
        return !isBlank(filePath);
    case ShortcutKind::command:
        return !isBlank(commandPathText);
    case ShortcutKind::app:
        break;
    }
    return selected.has_value();
}

bool NewCloneForm::canCreate() const {
    return hasTarget() && !isBlank(cloneName) && !creating;
}

std::string NewCloneForm::cloneNameOrPlaceholder() const {
    return nothingIfEmpty(trimmingWhitespace(cloneName)).value_or(tr("Name").toStdString());
}

std::string NewCloneForm::savedToText() const {
    if (edited) {
        return sentence(tr("Saved to %1"), {edited->place});
    }
    return sentence(tr("Saved to ~/Applications/%1.app"), {cloneNameOrPlaceholder()});
}

std::string NewCloneForm::replacementText(const std::vector<InstanceRecord>& clones) const {
    if (edited) {
        return {};
    }
    const std::filesystem::path place = WrapperFactory::wrapperURL(makeRequest());
    const auto replaced = std::find_if(clones.begin(), clones.end(),
                                       [&](const auto& clone) { return clone.bundleURL == place; });
    return replaced == clones.end()
               ? std::string()
               : sentence(
                     tr("“%1” already exists. Creating this clone will replace it; its data is "
                        "kept."),
                     {replaced->config.displayName});
}

std::optional<IconLabel> NewCloneForm::label() const {
    std::string text = trimmingWhitespace(iconLabelText);
    if (text.empty()) {
        return std::nullopt;
    }
    return IconLabel{
        .text = std::move(text), .colorHex = iconLabelColor, .position = iconLabelPosition};
}

std::string NewCloneForm::strategyCaption() const {
    return detectNote.value_or(strategyReason);
}

bool NewCloneForm::startsWithSeed() const {
    return shortcutType == ShortcutKind::app && canSeed && seed;
}

WrapperFactory::Request NewCloneForm::makeRequest() const {
    WrapperFactory::Request request{CloneTarget{.kind = shortcutType},
                                    static_cast<const CloneOptions&>(*this)};
    fillTarget(request, *this);
    request.displayName = trimmingWhitespace(cloneName);
    request.instanceHome = nothingIfEmpty(trimmingWhitespace(dataPath));
    request.customIcon = customIcon;
    request.hideWrapperIcon = hideDockIcon;
    if (auto words = splitIntoWords(argsText); !words.empty()) {
        request.extraArgs = std::move(words);
    }
    request.environment = parseKeyValues(envText);
    request.infoPlistOverrides = parseKeyValues(plistText);
    request.iconLabel = label();
    return request;
}

std::vector<InstalledApp> NewCloneForm::filtered(const std::vector<InstalledApp>& catalog) const {
    const std::string query = trimmingWhitespace(search);
    if (query.empty()) {
        return catalog;
    }
    const std::string locale = UserLocale::forCase();
    std::vector<InstalledApp> result;
    std::copy_if(catalog.begin(), catalog.end(), std::back_inserter(result), [&](const auto& app) {
        return Text::containsIgnoringCase(app.name, query, locale);
    });
    return result;
}

std::string NewCloneForm::noAppsText() const {
    return search.empty() ? tr("No apps found.").toStdString()
                          : sentence(tr("No apps match “%1”."), {search});
}

void NewCloneForm::select(const InstalledApp& app, std::string suggestedName) {
    selected = app;
    cloneName = std::move(suggestedName);
    automaticName.clear();
    strategyReason = sentence(tr("Checking how %1 stores its data…"), {app.name});
    static_cast<AppSettings&>(*this) = AppSettings{};
}

void NewCloneForm::suggestEnvironment(const std::map<std::string, std::string>& variables) {
    if (!envText.empty()) {
        return;
    }
    suggestedEnvironment = variables;
    for (const auto& [name, value] : variables) {
        envText.append(envText.empty() ? "" : "\n").append(keyValueLine(name, value));
    }
}

void NewCloneForm::withdrawSuggestedBus() {
    if (!takeBusAway(suggestedEnvironment) || !takeBusAway(parseKeyValues(envText))) {
        return;
    }
    suggestedEnvironment.erase(sessionBusVariable);
    const std::map<std::string, std::string> withdrawn{{sessionBusVariable, noSessionBus}};
    std::string rest;
    std::string_view lines = envText;
    while (!lines.empty()) {
        const std::string_view line = takePart(lines, '\n');
        if (parseKeyValues(line) != withdrawn) {
            rest.append(rest.empty() ? "" : "\n").append(line);
        }
    }
    envText = std::move(rest);
}

std::string NewCloneForm::environmentCostText() const {
    return environmentCost(parseKeyValues(envText), translated).value_or("");
}

bool NewCloneForm::hasAutomaticName() const {
    return !automaticName.empty() && cloneName == automaticName;
}

bool NewCloneForm::mayNameItself() const {
    return !edited && (isBlank(cloneName) || hasAutomaticName());
}

void NewCloneForm::autoNameIfNeeded() {
    if (!mayNameItself()) {
        return;
    }
    std::optional<std::string> name;
    if (shortcutType == ShortcutKind::web) {
        name = nameForWebAddress(webURL);
    } else if (shortcutType == ShortcutKind::command) {
        name = nameForCommand(commandPathText);
    }
    if (name || hasAutomaticName()) {
        cloneName = name.value_or("");
    }
    automaticName = name.value_or("");
}

void NewCloneForm::siteNamed(const std::string& title) {
    if (!title.empty() && mayNameItself()) {
        cloneName = title;
        automaticName = title;
    }
}

void NewCloneForm::clearIcon() {
    if (edited && !customIcon) {
        edited->ownIcon.reset();
    }
    customIcon.reset();
}

void NewCloneForm::nameEdited() {
    automaticName.clear();
}

void NewCloneForm::chooseFile(const std::filesystem::path& file) {
    filePath = file.string();
    if (isBlank(cloneName) && !edited) {
        cloneName = file.stem().string();
        automaticName.clear();
    }
}

void NewCloneForm::chooseCommand(const std::filesystem::path& command) {
    commandPathText = command.string();
    autoNameIfNeeded();
}

void NewCloneForm::chooseDataFolder(const std::filesystem::path& folder) {
    dataPath =
        joinAsText(withoutTrailingSlashes(folder) == "/" ? "" : withoutTrailingSlashes(folder),
                   cloneNameOrPlaceholder())
            .string();
}

void NewCloneForm::beginDetecting() {
    detecting = true;
    detectNote.reset();
}

void NewCloneForm::detected(Strategy recommended) {
    if (recommended == Strategy::unsupported) {
        detectNote =
            tr("This app resists cloning (singleton). It may not stay isolated.").toStdString();
    } else {
        strategy = recommended;
        detectNote =
            sentence(tr("Detected: %1."), {strategyLabel(rawString(recommended), translated)});
    }
    detecting = false;
}

void NewCloneForm::addEnvironment(const std::map<std::string, std::string>& variables) {
    const auto present = parseKeyValues(envText);
    for (const auto& [key, value] : variables) {
        if (present.contains(key)) {
            continue;
        }
        if (!envText.empty() && !envText.ends_with('\n')) {
            envText += '\n';
        }
        envText.append(keyValueLine(key, value));
    }
}

void NewCloneForm::detectionFailed(std::string_view description) {
    detectNote = sentence(tr("Couldn't detect: %1"), {description});
    detecting = false;
}

} // namespace quorvel
