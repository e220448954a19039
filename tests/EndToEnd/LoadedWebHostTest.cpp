// The module itself, without a window.
#include "Platform/processes/LoadedModule.h"
#include "WebHost/WebHostModule.h"

#include <gtest/gtest.h>

#include <string>

namespace quorvel {
namespace {

class LoadedWebHostTest : public ::testing::Test {
protected:
    // Asks it for a clone that can't be read.
    int run(std::uint32_t abi) {
        QuorvelWebHostRequest request{};
        request.abi = abi;
        request.configFile = "/nonexistent/instance.json";
        request.windowWord = "Word";
        request.listener = -1;
        request.context = &said_;
        request.started = [](void* said) { *static_cast<std::string*>(said) += "started"; };
        request.failed = [](void* said, const char* sentence) {
            *static_cast<std::string*>(said) += sentence;
        };
        return reinterpret_cast<QuorvelWebHostRun>(module_.function)(&request);
    }

    LoadedModule module_ = loadModule(QUORVEL_WEB_HOST, webHostFunction);
    std::string said_{};
};

TEST_F(LoadedWebHostTest, ARequestOfAnotherVersionIsRefusedUnread) {
    ASSERT_NE(module_.function, nullptr) << module_.problem;
    EXPECT_EQ(run(webHostAbi), 69);
    EXPECT_EQ(said_, "no readable configuration at /nonexistent/instance.json");
    for (const std::uint32_t other : {webHostAbi + 1, webHostAbi - 1, ~webHostAbi}) {
        said_.clear();
        EXPECT_EQ(run(other), 69);
        EXPECT_EQ(said_, "") << "its functions may be elsewhere";
    }
}

TEST_F(LoadedWebHostTest, TheModuleIsOnlyFoundByItsWholePath) {
    EXPECT_EQ(loadModule("quorvel-web-host.so", webHostFunction).problem,
              "its path is not absolute");
}

} // namespace
} // namespace quorvel
