#include "ProbeKit/ProfileGenerator.h"

#include "Base/BundleName.h"
#include "LaunchKit/WrapperFactory.h"

namespace quorvel {

AppProfile ProfileGenerator::makeProfile(const AppBundle& bundle, const ProbeResult& result,
                                         const std::string& osSignature) {
    AppProfile profile;
    profile.bundleId = bundle.bundleId;
    profile.displayName = bundleFallbackName(bundle.url);
    profile.sandboxed = bundle.sandboxed;
    profile.strategy = result.recommendedStrategy;
    profile.singleton = result.singleton;
    profile.prefsLeak = result.prefsLeak();
    if (WrapperFactory::isElectron(bundle.url)) {
        profile.extraArgs = {"--user-data-dir={{instanceHome}}/QuorvelData"};
    }
    profile.verifiedOn = {osSignature};
    profile.confidence = Confidence::autoDetected;
    return profile;
}

} // namespace quorvel
