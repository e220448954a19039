#include "QuorvelApp/model/AppFacts.h"

#include "LaunchKit/Copying/DataSeed.h"
#include "Presentation/AppTexts.h"
#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/model/Translated.h"

#include <type_traits>

namespace quorvel {
namespace {

// Returns a function that answers a question about the app's bundle, for one that can't be read
// with a default.
template<typename Question>
auto aboutBundle(const AppServices& services, const InstalledApp& app, Question question) {
    using Answer = std::invoke_result_t<Question, const AppBundle&>;
    return [read = services.readBundle, url = app.url, question = std::move(question)]() -> Answer {
        try {
            if (const auto bundle = read(url)) {
                return question(*bundle);
            }
        } catch (const std::exception&) {
            // Like any app that can't be read.
        }
        return {};
    };
}

} // namespace

std::function<bool()> sandboxCheck(const AppServices& services, const InstalledApp& app) {
    return aboutBundle(services, app, [](const AppBundle& bundle) { return bundle.sandboxed; });
}

std::function<AppFacts()> factsCheck(const AppServices& services, const InstalledApp& app) {
    return aboutBundle(services, app,
                       [suggest = services.suggestEnvironment](const AppBundle& bundle) {
                           return AppFacts{.sandboxed = bundle.sandboxed,
                                           .snapReason = snapReason(bundle, translated),
                                           .environment = suggest(bundle),
                                           .hasSeed = hasSeed(bundle)};
                       });
}

SandboxInfo proposal(const InstalledApp& app, const AppFacts& facts) {
    if (!facts.sandboxed) {
        return {.sandboxed = false,
                .strategy = Strategy::homeOverride,
                .reason = sentence(AppModel::tr("“%1” isn’t sandboxed → Home override (A), the "
                                                "reliable path most apps use."),
                                   {app.name}),
                .environment = facts.environment,
                .hasSeed = facts.hasSeed};
    }
    const std::string reason =
        sentence(AppModel::tr("“%1” is sandboxed. macOS confines it to a shared, "
                              "protected container that can't be redirected, so two "
                              "copies would share the same data and account. Quorvel "
                              "can still make a separate Dock launcher, but it won't "
                              "isolate the data."),
                 {app.name});
    return {.sandboxed = true,
            .strategy = facts.snapReason ? Strategy::unsupported : Strategy::containerRedirect,
            .reason = facts.snapReason.value_or(reason),
            .environment = facts.environment,
            .hasSeed = facts.hasSeed};
}

} // namespace quorvel
