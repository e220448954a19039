#include "ProbeKit/AppNames.h"

#include "Base/Text.h"
#include "LaunchKit/AppBundle.h"
#include "Platform/desktop/UserLocale.h"

#include <algorithm>
#include <array>

namespace quorvel {
namespace {

// Apps name their folders after the last component of their identifier, "Notes" for
// "com.example.Notes".
std::string_view lastComponent(std::string_view bundleId) {
    const std::size_t end = bundleId.find_last_not_of('.');
    if (end == bundleId.npos) {
        return bundleId;
    }
    const std::string_view trimmed = bundleId.substr(0, end + 1);
    const std::size_t dot = trimmed.rfind('.');
    return dot == trimmed.npos ? trimmed : trimmed.substr(dot + 1);
}

// Names that many applications' files contain, or programs that run many applications.
bool saysNothing(std::string_view name) {
    constexpr std::size_t shortest = 3;
    constexpr std::array<std::string_view, 17> common{
        "app",      "application", "bash",    "browser", "client", "desktop",
        "electron", "env",         "flatpak", "gnome",   "java",   "kde",
        "launcher", "main",        "node",    "snap",    "python3"};
    const std::string lower = Text::lowerCased(name);
    return lower.size() < shortest ||
           std::find(common.begin(), common.end(), lower) != common.end();
}

std::string withoutEnding(std::string name, std::string_view ending) {
    if (name.ends_with(ending)) {
        name.resize(name.size() - ending.size());
    }
    return name;
}

// "telegram" for "org.telegram.desktop".
std::string tellingComponent(const std::string& identifier) {
    std::string_view rest = identifier;
    std::string_view last = lastComponent(rest);
    while (saysNothing(last) && rest.find('.') != rest.npos) {
        rest = rest.substr(0, rest.rfind('.'));
        last = lastComponent(rest);
    }
    return std::string(last);
}

std::vector<std::string> wordsOf(std::string_view text) {
    constexpr std::size_t shortest = 4;
    const std::string plain = Text::replacingNonAlphanumerics(Text::lowerCased(text), ' ') + ' ';
    std::vector<std::string> words;
    std::string word;
    for (const char byte : plain) {
        if (byte != ' ') {
            word += byte;
            continue;
        }
        if (word.size() >= shortest && !saysNothing(word)) {
            words.push_back(word);
        }
        word.clear();
    }
    return words;
}

// "Firefox ESR" keeps its data in "firefox", though its program is "firefox-esr".
std::vector<std::string> commonWords(std::string_view title, std::string_view name) {
    const std::vector<std::string> named = wordsOf(name);
    std::vector<std::string> common = wordsOf(title);
    std::erase_if(common, [&](const std::string& word) {
        return std::find(named.begin(), named.end(), word) == named.end();
    });
    return common;
}

std::vector<std::string> namesOfEntry(const std::string& bundleId, const DesktopTarget& target) {
    using Packaging = ResolvedProgram::Packaging;
    const std::string identifier = withoutEnding(bundleId, ".desktop");
    std::vector<std::string> names{identifier, tellingComponent(identifier),
                                   target.entry.startupWmClass, target.entry.flatpakId,
                                   target.entry.snapInstance};
    const auto addCommon = [&](const std::string& name) {
        const auto common = commonWords(target.entry.name, name);
        names.insert(names.end(), common.begin(), common.end());
    };
    addCommon(names[1]);
    const ResolvedProgram& program = target.program;
    if (program.packaging == Packaging::none) {
        const std::string launcher = program.launcher.filename();
        addCommon(launcher);
        names.push_back(launcher);
        names.push_back(program.executable.filename());
    } else if (program.packaging == Packaging::appImage) {
        // "Notes-1.2-x86_64": the rest changes with every version.
        names.push_back(identifier.substr(0, identifier.find_first_of("-_ ")));
    }
    std::erase_if(names, saysNothing);
    return names;
}

} // namespace

AppNames::AppNames(const AppBundle& app)
    : names_(app.desktop ? namesOfEntry(app.bundleId, *app.desktop)
                         : std::vector<std::string>{std::string(lastComponent(app.bundleId)),
                                                    app.bundleId}),
      locale_(UserLocale::forCase()) {}

bool AppNames::appearIn(std::string_view path) const {
    return std::any_of(names_.begin(), names_.end(), [&](const std::string& name) {
        return Text::containsIgnoringCase(path, name, locale_);
    });
}

} // namespace quorvel
