// Writes icon containers of every kind as a fuzzer's first inputs: icns_seeds FOLDER

#include "tests/support/IcnsBuilder.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>

namespace {

using namespace quorvel::testing;

std::map<std::string, std::string> seeds() {
    const QImage picture16 = testPicture(16);
    const QImage picture32 = testPicture(32);
    const std::string inner = icnsEntry("ic04", argbOf(picture16));
    return {
        {"every-kind", icnsOfEveryKind()},
        {"png", icnsOf({icnsEntry("ic11", pngOf(picture32))})},
        {"png-16-bit",
         icnsOf({icnsEntry("icp4", pngOf(picture16.convertToFormat(QImage::Format_RGBA64)))})},
        {"png-palette",
         icnsOf({icnsEntry("icp4", pngOf(picture16.convertToFormat(QImage::Format_Indexed8)))})},
        {"jp2-rgba", icnsOf({icnsEntry("icp4", jpeg2000Of(picture16, Jpeg2000Form::rgba))})},
        {"jp2-gray", icnsOf({icnsEntry("icp4", jpeg2000Of(picture16, Jpeg2000Form::gray, true))})},
        {"jp2-ycc", icnsOf({icnsEntry("icp4", jpeg2000Of(picture16, Jpeg2000Form::ycc))})},
        {"argb", icnsOf({inner})},
        {"rle-mask", icnsOf({icnsEntry("is32", rle24Of(picture16)),
                             icnsEntry("s8mk", alphaMaskOf(picture16))})},
        {"raw", icnsOf({icnsEntry("is32", raw32Of(picture16))})},
        {"bits", icnsOf({icnsEntry("ics#", bitmapOf(picture16) + bitMaskOf(picture16)),
                         icnsEntry("ics8", alphaMaskOf(picture16)),
                         icnsEntry("ics4", alphaMaskOf(picture16))})},
        {"nested", icnsOf({icnsEntry("slct", icnsEntry("slct", icnsOf({inner})) + inner)})},
    };
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: icns_seeds FOLDER\n";
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    for (const auto& [name, bytes] : seeds()) {
        std::ofstream file(folder / (name + ".icns"), std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!file.flush()) {
            std::cerr << "could not write " << folder / name << "\n";
            return 1;
        }
    }
    return 0;
}
