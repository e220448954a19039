// Tries installed applications out: app_trial ENTRY...
// Prints for each what a table of applications says about it, separated by " | ".
#include "tests/EndToEnd/AppTrial.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <span>

using namespace quorvel::testing;

namespace {

using Copies = std::array<const CopyReport*, 3>;
constexpr std::array copyNames{"first clone", "second clone", "original"};

std::string joined(const std::set<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : ", ") + text;
    }
    return all;
}

// "yes", or for which copies it is not so.
template<typename Predicate>
std::string verdict(std::span<const CopyReport* const> copies, Predicate predicate) {
    std::set<std::string> without;
    for (std::size_t i = 0; i < copies.size(); ++i) {
        if (!predicate(*copies[i])) {
            without.insert(copyNames.at(i));
        }
    }
    return without.empty() ? "yes" : "not the " + joined(without);
}

// What every clone has, of any application.
bool isQuorvels(const std::string& file) {
    constexpr std::array own{".quorvel-lock", "quorvel-instance.log", ".config/user-dirs.dirs",
                             ".config/mimeapps.list"};
    return std::find(own.begin(), own.end(), file) != own.end() ||
           file.starts_with(".local/share/quorvel");
}

bool hasData(const CopyReport& copy) {
    return std::any_of(copy.data.begin(), copy.data.end(), [](const std::string& file) {
        const bool isParent = file == ".config" || file == ".local" || file == ".local/share" ||
                              file == ".local/state" || file == ".cache";
        return !isParent && !isQuorvels(file) && file.find("mesa_shader") == std::string::npos;
    });
}

// The folders in which something was written, three names deep.
std::string places(const std::vector<std::string>& files) {
    std::set<std::string> places;
    for (const std::string& file : files) {
        std::size_t end = 0;
        for (int names = 0; names < 3 && end != std::string::npos; ++names) {
            end = file.find('/', end + 1);
        }
        places.insert("`" + file.substr(0, end) + "`");
    }
    return places.empty() ? "nothing" : joined(places);
}

// What came up may be no more than a question or an error.
std::string dialogs(const AppTrialReport& report) {
    std::set<std::string> titles;
    for (const CopyReport* copy : {&report.first, &report.second, &report.original}) {
        if (copy->window && copy->window->isDialog) {
            titles.insert("“" + copy->window->title + "”");
        }
    }
    return titles.empty() ? "" : ", the dialog " + joined(titles);
}

std::string identity(const AppTrialReport& report) {
    const std::optional<SessionWindow>& window = report.first.window;
    if (report.first.hasOwnIdentity() && report.second.hasOwnIdentity()) {
        return "own";
    }
    return window ? "the original's (" + window->instance.substr(0, window->instance.find(' ')) +
                        ", " + window->className + ")"
                  : "";
}

std::string row(const AppTrialReport& report) {
    if (report.name.empty() || !report.error.empty()) {
        const std::string reason =
            report.error.empty() ? "is not listed by `quorvelctl apps`" : report.error;
        return report.name + " | " + reason.substr(0, reason.find('\n')) + " | | | |";
    }
    const Copies copies{&report.first, &report.second, &report.original};
    const std::span clones(copies.data(), 2);
    std::string outside = places(report.writtenOutside);
    if (report.settingsChanged) {
        outside += ", the user's settings";
    }
    if (!report.left.empty()) {
        outside += "; left after deletion: " + places(report.left);
    }
    return report.name + " | " + verdict(copies, [](const CopyReport& copy) { return copy.runs; }) +
           " | " + verdict(copies, [](const CopyReport& copy) { return copy.window.has_value(); }) +
           dialogs(report) + " | " + verdict(clones, hasData) + " | " + outside + " | " +
           identity(report);
}

} // namespace

int main(int argc, char** argv) {
    if (const auto obstacle = OrdinarySession::obstacle()) {
        std::cerr << "app_trial: " << *obstacle << "\n";
        return 1;
    }
    for (const char* entry : std::span(argv, static_cast<std::size_t>(argc)).subspan(1)) {
        // The harder of the two: an application that follows the variables meets the original's.
        AppTrial trial(OrdinarySession::DataFolders::Elsewhere, entry);
        std::cout << row(trial.run()) << std::endl;
    }
    return 0;
}
