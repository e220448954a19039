#include "LaunchKit/Icons/IcnsTypes.h"

#include <algorithm>
#include <array>

namespace quorvel {
namespace {

constexpr IcnsType square(std::string_view name, int side) {
    return {icnsCode(name), IcnsForm::file, side, side, 0, 0};
}

constexpr IcnsType color(std::string_view name, IcnsForm form, int side, std::string_view alpha,
                         std::string_view bits) {
    return {icnsCode(name), form, side, side, icnsCode(alpha), icnsCode(bits)};
}

constexpr IcnsType legacy(std::string_view name, IcnsForm form, int width, int height,
                          std::string_view bits) {
    return {icnsCode(name), form, width, height, 0, icnsCode(bits)};
}

constexpr std::array types{
    square("ic04", 16),
    square("ic05", 32),
    square("icsb", 18),
    square("icsB", 36),
    square("sb24", 24),
    square("SB24", 48),
    square("icp6", 64),
    square("ic07", 128),
    square("ic08", 256),
    square("ic09", 512),
    square("ic10", 1024),
    square("ic11", 32),
    square("ic12", 64),
    square("ic13", 256),
    square("ic14", 512),
    color("icp4", IcnsForm::fileOrRgb, 16, "s8mk", "ics#"),
    color("icp5", IcnsForm::fileOrRgb, 32, "l8mk", "ICN#"),
    color("is32", IcnsForm::rgb, 16, "s8mk", "ics#"),
    color("il32", IcnsForm::rgb, 32, "l8mk", "ICN#"),
    color("ih32", IcnsForm::rgb, 48, "h8mk", "ich#"),
    color("it32", IcnsForm::rgb, 128, "t8mk", ""),
    legacy("icm8", IcnsForm::indexed8, 16, 12, "icm#"),
    legacy("ics8", IcnsForm::indexed8, 16, 16, "ics#"),
    legacy("icl8", IcnsForm::indexed8, 32, 32, "ICN#"),
    legacy("ich8", IcnsForm::indexed8, 48, 48, "ich#"),
    legacy("icm4", IcnsForm::indexed4, 16, 12, "icm#"),
    legacy("ics4", IcnsForm::indexed4, 16, 16, "ics#"),
    legacy("icl4", IcnsForm::indexed4, 32, 32, "ICN#"),
    legacy("ich4", IcnsForm::indexed4, 48, 48, "ich#"),
    legacy("icm#", IcnsForm::bitmap, 16, 12, "icm#"),
    legacy("ics#", IcnsForm::bitmap, 16, 16, "ics#"),
    legacy("ICN#", IcnsForm::bitmap, 32, 32, "ICN#"),
    legacy("ich#", IcnsForm::bitmap, 48, 48, "ich#"),
    legacy("ICON", IcnsForm::bitmap, 32, 32, ""),
};

constexpr std::array nestedFamilies{
    icnsCode("slct"), icnsCode("sbtp"), icnsCode("tile"),     icnsCode("over"),
    icnsCode("open"), icnsCode("odrp"), IcnsCode{0xFDD92FA8}, // the dark form; no readable name
};

constexpr std::array alphaMasks{icnsCode("s8mk"), icnsCode("l8mk"), icnsCode("h8mk"),
                                icnsCode("t8mk")};

} // namespace

std::string icnsName(IcnsCode code) {
    std::string name;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        name += static_cast<char>((code >> shift) & 0xFFU);
    }
    return name;
}

const IcnsType* icnsType(IcnsCode code) {
    const auto* type = std::find_if(types.begin(), types.end(),
                                    [&](const IcnsType& known) { return known.code == code; });
    return type == types.end() ? nullptr : type;
}

bool isNestedFamily(IcnsCode code) {
    return std::find(nestedFamilies.begin(), nestedFamilies.end(), code) != nestedFamilies.end();
}

bool isAlphaMask(IcnsCode code) {
    return std::find(alphaMasks.begin(), alphaMasks.end(), code) != alphaMasks.end();
}

} // namespace quorvel
