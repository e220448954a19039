#include "QuorvelApp/model/SeededCreation.h"

#include "LaunchKit/Copying/CloneWithData.h"
#include "LaunchKit/Copying/DataSeed.h"

#include <utility>

namespace quorvel {

AppServices::WrapperMaker seededMaker(std::shared_ptr<const BackgroundCopy::Control> control,
                                      std::shared_ptr<CopiedSeed> seed) {
    return [control = std::move(control), seed = std::move(seed)](
               const WrapperFactory::Request& request, const RequestPermissions& permissions,
               const WrapperFactory::Warning& warn) {
        CloneWithData made =
            createCloneWithData(WrapperFactory(), request, permissions,
                                {.parts = seedFor(request), .copy = control->options()}, warn);
        *seed = {made.data, std::move(made.findings)};
        return made.clone.wrapper;
    };
}

} // namespace quorvel
