#pragma once

#include "LaunchKit/Records/EnumNames.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class QImage;

namespace quorvel {

/// How the pixels of an entry are stored.
enum class IcnsEncoding { png, jpeg2000, argb, rle24, raw32, indexed8, indexed4, bitmap };

template<>
inline constexpr auto enumNames<IcnsEncoding> = namesOfAllCases<IcnsEncoding>({
    {IcnsEncoding::png, "png"},
    {IcnsEncoding::jpeg2000, "jpeg2000"},
    {IcnsEncoding::argb, "argb"},
    {IcnsEncoding::rle24, "rle24"},
    {IcnsEncoding::raw32, "raw32"},
    {IcnsEncoding::indexed8, "8bit"},
    {IcnsEncoding::indexed4, "4bit"},
    {IcnsEncoding::bitmap, "1bit"},
});

/// One image of an icon file.
struct IcnsEntry {
    std::string type{}; ///< four characters
    IcnsEncoding encoding = IcnsEncoding::png;
    int width = 0; ///< pixels
    int height = 0;

    bool operator==(const IcnsEntry&) const = default;
};

/// Reads icon container files (".icns"). Images are decoded on request. Hostile files take
/// bounded time and memory and never throw; the intact images of a damaged one are found.
/// A value that shares its bytes with its copies; may be read by several threads at once.
class IcnsFile {
public:
    /// The largest file that is read.
    static constexpr std::size_t maximumFileSize = std::size_t{64} << 20U;

    /// Returns `std::nullopt` if the file can't be read, is larger, or is not a regular file with
    /// an icon container.
    [[nodiscard]] static std::optional<IcnsFile> read(const std::filesystem::path& file);
    /// Returns `std::nullopt` if the bytes are not an icon container or are more than the maximum.
    [[nodiscard]] static std::optional<IcnsFile> parse(std::string bytes);

    /// The images that look complete without decoding and have the size of their type: the icon's
    /// own, then those of nested families (its selected or dark form); in each, full color in the
    /// order of the file, then 8, 4 and 1 bit. Masks and other data are left out.
    [[nodiscard]] const std::vector<IcnsEntry>& entries() const;

    /// Returns one image as 8-bit ARGB with straight alpha (`QImage::Format_ARGB32`, sRGB); null if
    /// it is broken. Throws `std::out_of_range` for an invalid index.
    [[nodiscard]] QImage decode(std::size_t index) const;

    /// Returns the widest image that can be decoded, the first of equally wide ones; null if none
    /// can.
    [[nodiscard]] QImage widest() const;

    /// Returns the image to show at `side` pixels: the smallest that is at least that wide, or else
    /// the widest, among those that can be decoded; null if none can.
    [[nodiscard]] QImage nearest(int side) const;
    /// Returns whether `nearest` finds one.
    [[nodiscard]] bool isDecodable(int side) const;

private:
    class Contents;
    explicit IcnsFile(std::shared_ptr<const Contents> contents);
    [[nodiscard]] QImage firstDecodable(const std::vector<std::size_t>& order) const;

    std::shared_ptr<const Contents> contents_;
};

} // namespace quorvel
