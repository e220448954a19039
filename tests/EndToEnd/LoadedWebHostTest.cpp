// The module itself, without a window.
#include "Platform/processes/LoadedModule.h"
#include "WebHost/WebHostModule.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(LoadedWebHostTest, ARequestOfAnotherVersionIsRefused) {
    const LoadedModule module = loadModule(QUORVEL_WEB_HOST, webHostFunction);
    ASSERT_NE(module.function, nullptr) << module.problem;
    QuorvelWebHostRequest request{};
    request.abi = webHostAbi + 1;
    EXPECT_EQ(reinterpret_cast<QuorvelWebHostRun>(module.function)(&request), 69);
    EXPECT_EQ(loadModule("quorvel-web-host.so", webHostFunction).problem,
              "its path is not absolute");
}

} // namespace
} // namespace quorvel
