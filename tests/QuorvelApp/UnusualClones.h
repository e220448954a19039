#pragma once

#include "LaunchKit/Changes/CloneCreation.h"
#include "tests/support/AppBundles.h"

#include <string>
#include <vector>

namespace quorvel::testing {

/// Texts that forms, shells and files have trouble with.
inline const std::vector<std::string> unusualWords{
    "--a b", "line\nbreak", "\"quoted\"", "back\\n", "", "\u2028", "tab\t", "it's $x", "\u202Eb"};

/// Returns a request for a clone "Odd" of that kind, whose every option has an unusual value.
inline WrapperFactory::Request unusualRequest(ShortcutKind kind) {
    WrapperFactory::Request request;
    request.kind = kind;
    request.displayName = "Odd";
    request.instanceHome = "~/Else where/Odd";
    request.strategy = Strategy::unsupported;
    request.environment = {{"A", "1"},    {"B", " x = y "}, {"LINES", "two\nlines"},
                           {" KEY", "k"}, {"EMPTY", ""},    {"NBSP", "a\u00A0b"}};
    request.infoPlistOverrides = {{"LSCategory", "x"}, {"Lines", "a\nb"}};
    request.iconLabel = {.text = " W ", .colorHex = "a1b2c3", .position = IconLabel::Position::top};
    request.links = "app.quorvel.instance.gone";
    request.extraArgs = unusualWords;
    request.hideWrapperIcon = true;
    for (const CloneSwitch& each : cloneSwitches) {
        request.*each.member = !each.defaultValue();
    }
    switch (kind) {
    case ShortcutKind::web:
        request.url = " https://a.test/ü?x=y z ";
        break;
    case ShortcutKind::file:
        request.openPath = "~/Some file\u00A0";
        break;
    case ShortcutKind::command:
        request.commandPath = " /bin/true";
        request.commandArgs = unusualWords;
        request.workingDirectory = " /tmp ";
        break;
    case ShortcutKind::app:
        break;
    }
    return request;
}

/// Makes a clone with this build's runner.
inline InstanceRecord makeClone(const WrapperFactory::Request& request) {
    return createClone(WrapperFactory(runnerProgram()), request, {}).record.value();
}

} // namespace quorvel::testing
