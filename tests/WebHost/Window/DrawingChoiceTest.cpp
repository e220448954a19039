#include "WebHost/Window/DrawingChoice.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

namespace fs = std::filesystem;

TEST(DrawingChoiceTest, WithoutACardOpenGLIsNotTried) {
    const testing::TemporaryFolder devices;
    EXPECT_EQ(reasonAgainstOpenGL({}, devices.path()), "there is no graphics card");
    fs::create_directory(devices / "dri");
    EXPECT_EQ(reasonAgainstOpenGL({}, devices.path()), "there is no graphics card");
    testing::write(devices / "dri/renderD128", "");
    EXPECT_EQ(reasonAgainstOpenGL({}, devices.path()), "");
    for (const char* card : {"nvidia0", "dxg", "mali0"}) {
        const testing::TemporaryFolder others;
        testing::write(others / card, "");
        EXPECT_EQ(reasonAgainstOpenGL({}, others.path()), "") << card;
    }
}

TEST(DrawingChoiceTest, ARendererThatIsSetIsKept) {
    const testing::TemporaryFolder devices;
    EXPECT_EQ(reasonAgainstOpenGL({{"GSK_RENDERER", "gl"}}, devices.path()), "");
    EXPECT_NE(reasonAgainstOpenGL({{"GDK_BACKEND", "x11"}}, devices.path()), "");
}

TEST(DrawingChoiceTest, OpenGLOnTheProcessorIsRecognised) {
    for (const char* name : {"llvmpipe (LLVM 15.0.6, 256 bits)", "softpipe", "Software Rasterizer",
                             "zink Vulkan 1.3 (llvmpipe (LLVM 19.1.7, 256 bits) (MESA_LLVMPIPE))",
                             "ANGLE (Google, Vulkan 1.3.0 (SwiftShader Device (LLVM 10.0.0)))"}) {
        EXPECT_EQ(reasonAgainst(name), std::string("it would run on the processor: ") + name);
    }
    for (const char* name : {"Mesa Intel(R) UHD Graphics 620 (KBL GT2)", "virgl (AMD Radeon)",
                             "AMD Radeon RX 6600 (radeonsi, navi23, LLVM 15.0.6, DRM 3.54)",
                             "NVIDIA GeForce RTX 3060/PCIe/SSE2", "Mali-G52 (Panfrost)"}) {
        EXPECT_EQ(reasonAgainst(name), "") << name;
    }
    EXPECT_EQ(reasonAgainst(""), "there is no OpenGL");
}

} // namespace
} // namespace quorvel
