#pragma once

#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "tests/QuorvelApp/StubServices.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quorvel::testing {

/// A model with stubs, whose clones lie in a throw-away home.
class AppModelFixture : public ::testing::Test {
protected:
    InstanceRecord addClone(const std::string& name, ShortcutKind kind = ShortcutKind::app) {
        InstanceConfig config = minimalConfig(name);
        config.kind = kind;
        config.bundleId = WrapperFactory::defaultBundleId(name);
        makeWrapper(folder / (name + ".app"), config);
        return {.bundleURL = folder / (name + ".app"), .config = config};
    }

    std::vector<std::string> names() {
        std::vector<std::string> result;
        for (const InstanceRecord& record : model().clones()) {
            result.push_back(record.config.displayName);
        }
        return result;
    }

    AppModel& model() { return stubbed.model(); }

    TemporaryHome home;
    std::filesystem::path folder = home / "Applications";
    StubbedModel stubbed{folder};
};

} // namespace quorvel::testing
