#include "QuorvelApp/model/AppServices.h"

#include "LaunchKit/Changes/CloneCreation.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "LaunchKit/Targets/ShippedProfiles.h"
#include "ProbeKit/AppProber.h"

#include <QTimer>

namespace quorvel {
namespace {

std::optional<ProbeResult> probeApp(const std::filesystem::path& app,
                                    const std::shared_ptr<Workspace>& workspace,
                                    const std::atomic<bool>& quitting) {
    AppProber::Dependencies dependencies;
    dependencies.workspace = workspace;
    auto prober = AppProber::forApp(app, std::move(dependencies));
    if (!prober) {
        return std::nullopt;
    }
    AppProber::Options options;
    options.cancelled = &quitting;
    return prober->run(options);
}

} // namespace

AppServices AppServices::system(ActivationTokenSource tokens) {
    AppServices services;
    services.workspace = makeSystemWorkspace(std::move(tokens));
    services.tasks = std::make_shared<ThreadPoolTasks>();
    services.quitting = std::make_shared<std::atomic<bool>>(false);
    services.scanCatalog = [] { return AppCatalog::scan(); };
    services.readBundle = [](const std::filesystem::path& app) { return AppBundle::read(app); };
    services.suggestEnvironment = [](const AppBundle& app) {
        return ShippedProfiles::suggestedEnvironment(app);
    };
    services.createWrapper = [](const WrapperFactory::Request& request,
                                const RequestPermissions& permissions,
                                const WrapperFactory::Warning& warn) {
        return createClone(WrapperFactory(), request, permissions, warn).wrapper;
    };
    services.repairMenu = [](const std::vector<InstanceRecord>& clones) {
        (void)quorvel::repairMenu(clones);
    };
    services.probe = [workspace = services.workspace,
                      quitting = services.quitting](const std::filesystem::path& app) {
        return probeApp(app, workspace, *quitting);
    };
    if (const auto program = sitePreviewProgram(currentEnvironment())) {
        services.previewSite = [program = *program,
                                quitting = services.quitting](const std::string& address,
                                                              const std::filesystem::path& folder) {
            return fetchSitePreview(program, address, folder, sitePatience, quitting.get());
        };
    }
    services.after = [](std::chrono::milliseconds time, QObject* context,
                        std::function<void()> then) {
        QTimer::singleShot(time, context, std::move(then));
    };
    return services;
}

} // namespace quorvel
