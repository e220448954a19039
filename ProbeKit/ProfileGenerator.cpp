#include "ProbeKit/ProfileGenerator.h"

#include "Base/BundleName.h"
#include "LaunchKit/Targets/AppEngine.h"

namespace quorvel {
namespace {

std::string nameOf(const AppBundle& app) {
    return app.desktop && !app.desktop->entry.name.empty() ? app.desktop->entry.name
                                                           : bundleFallbackName(app.url);
}

} // namespace

AppProfile ProfileGenerator::makeProfile(const AppBundle& bundle, const ProbeResult& result,
                                         const std::string& osSignature) {
    AppProfile profile;
    profile.bundleId = bundle.bundleId;
    profile.displayName = nameOf(bundle);
    profile.sandboxed = bundle.sandboxed;
    profile.strategy = result.recommendedStrategy;
    profile.singleton = result.singleton;
    profile.prefsLeak = result.prefsLeak();
    profile.extraArgs = electronArgs(bundle.url);
    profile.verifiedOn = {osSignature};
    profile.confidence = Confidence::autoDetected;
    if (!result.environment.empty()) {
        profile.environment = result.environment;
    }
    return profile;
}

} // namespace quorvel
