#include "ui/window/renderer.h"

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

TEST(RendererTest, TellsAGraphicsCardFromTheProcessor) {
    const struct {
        const char* name;
        bool onProcessor;
    } cases[] = {
        {"", true},
        {"llvmpipe (LLVM 15.0.6, 256 bits)", true},
        {"softpipe", true},
        {"Gallium 0.4 on SWRAST", true},
        {"virgl (LLVMPIPE (LLVM 15.0.6, 256 bits))", true},
        {"Software Rasterizer", true},
        {"ANGLE (Google, Vulkan 1.3.0 (SwiftShader Device (Subzero) (0x0000C0DE)))", true},
        {"D3D12 (Microsoft Basic Render Driver)", true},
        {"Mesa Intel(R) UHD Graphics 620 (KBL GT2)", false},
        {"AMD Radeon RX 6600 (radeonsi, navi23, LLVM 15.0.6, DRM 3.49, 6.1.0-18-amd64)", false},
        {"SVGA3D; build: RELEASE;  LLVM;", false},
        {"NVIDIA GeForce GTX 1650/PCIe/SSE2", false},
    };
    for (const auto& [name, onProcessor] : cases)
        EXPECT_EQ(rendersOnProcessor(QString::fromLatin1(name)), onProcessor) << name;
}

}  // namespace
}  // namespace reelcrate
