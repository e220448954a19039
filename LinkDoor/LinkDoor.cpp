#include "LinkDoor/LinkDoor.h"

#include "Base/CloneLayout.h"
#include "Base/PathText.h"
#include "Base/TerminalText.h"
#include "LinkDoor/DefaultBrowser.h"
#include "LinkDoor/LinkAddress.h"
#include "LinkDoor/LinkSession.h"
#include "Platform/files/FileSystem.h"
#include "Platform/processes/Environment.h"
#include "Platform/processes/ProcessReplacement.h"
#include "Platform/processes/ReportedStart.h"

#include <charconv>
#include <cstdio>

namespace quorvel {
namespace {

std::string homeOfClone(const Environment& environment) {
    const std::string home = valueOf(environment, cloneHomeVariable);
    return home.starts_with('/') ? home : valueOf(environment, "HOME");
}

// Nobody sees the standard error of what an application starts.
class Reporter {
public:
    explicit Reporter(std::string cloneHome) : home_(std::move(cloneHome)) {}

    void say(const std::string& message) const {
        const std::string line = "quorvel-link-door: " + terminalText(message) + "\n";
        std::fputs(line.c_str(), stderr);
        const auto log = home_.starts_with('/')
                             ? openForAppending(joinAsText(home_, instanceLogName))
                             : std::nullopt;
        if (log) {
            log->write(line);
        }
    }

private:
    std::string home_;
};

// One that can't be read counts as too many.
int hopsIn(const Environment& environment) {
    const std::string text = valueOf(environment, linkHopsVariable);
    int hops = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), hops);
    const bool isNumber = result.ec == std::errc{} && result.ptr == text.data() + text.size();
    return text.empty() ? 0 : isNumber && hops >= 0 ? hops : maxLinkHops;
}

LinkSession sessionOf(const std::string& home, const Environment& clone, const Reporter& reporter) {
    if (auto session = readLinkSession(home)) {
        return std::move(*session);
    }
    reporter.say("there is no usable session file at " + linkSessionFile(home) +
                 "; the link is opened in a guess at the session");
    return guessedLinkSession(home, clone);
}

// Returns why the clone's runner did not open the address; empty if it did.
std::string failureOf(const std::string& runner, const std::string& address) {
    Process::Options options;
    options.executable = runner;
    options.arguments = {address};
    options.directory = "/"; // as a desktop does
    try {
        const StartOutcome outcome = outcomeOf(startReporting(options));
        switch (outcome.kind) {
        case StartOutcome::Case::failed:
            return outcome.sentence;
        case StartOutcome::Case::ended:
            return "it ended at once";
        case StartOutcome::Case::started:
        case StartOutcome::Case::nothingHeard:
            break;
        }
        return {};
    } catch (const PlatformError& error) {
        return error.description();
    }
}

bool startSomething(const LinkSession& session, const std::string& scheme,
                    const std::string& address, const Reporter& reporter) {
    if (!session.opener.empty()) {
        const std::string failure = failureOf(session.opener, address);
        if (failure.empty()) {
            return true;
        }
        reporter.say("the clone chosen for links couldn’t open it: " + failure +
                     "; the default browser is used");
    }
    return openWithDefault(scheme, address);
}

} // namespace

int openLinkOutside(const std::vector<std::string>& arguments) {
    const Environment clone = currentEnvironment();
    const std::string home = homeOfClone(clone);
    const Reporter reporter(home);
    if (arguments.size() != 1) {
        reporter.say("takes exactly one address");
        return linkUsage;
    }
    const std::string& address = arguments.front();
    std::string scheme;
    try {
        scheme = checkedLinkScheme(address);
    } catch (const LinkAddressError& error) {
        reporter.say("a link was not opened: " + error.description());
        return linkRefused;
    }
    const int hops = hopsIn(clone);
    if (hops >= maxLinkHops) {
        reporter.say("a link was not opened: it was passed from clone to clone too "
                     "often");
        return linkLoops;
    }
    const LinkSession session = sessionOf(home, clone, reporter);
    Environment outside = session.outside(clone);
    outside[linkHopsVariable] = std::to_string(hops + 1);
    replaceEnvironment(outside);
    if (!startSomething(session, scheme, address, reporter)) {
        reporter.say("a link was not opened: there is no program for it");
        return linkUnavailable;
    }
    return 0;
}

int openAsXdgOpen(const std::vector<std::string>& arguments) {
    if (arguments.size() == 1 && hasLinkScheme(arguments.front())) {
        return openLinkOutside(arguments);
    }
    const auto program = realXdgOpen();
    if (!program) {
        std::fputs("xdg-open: the program that this one replaces is not installed\n", stderr);
        return linkUnavailable;
    }
    try {
        replaceProcess(*program, arguments);
    } catch (const PlatformError& error) {
        std::fputs(("xdg-open: " + terminalText(error.description()) + "\n").c_str(), stderr);
        return linkUnavailable;
    }
}

} // namespace quorvel
