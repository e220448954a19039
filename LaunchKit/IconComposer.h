#pragma once

#include "Base/Error.h"
#include "LaunchKit/IconLabel.h"

#include <filesystem>
#include <optional>
#include <string>

/// Draws a label onto an icon.
namespace quorvel::IconComposer {

class ComposeError : public Error {
public:
    enum class Case { noSourceImage, destinationFailed };

    /// `source` contains no image that can be read.
    [[nodiscard]] static ComposeError noSourceImage(const std::filesystem::path& source);
    /// The icon can't be drawn or written.
    [[nodiscard]] static ComposeError destinationFailed();

    [[nodiscard]] Case kind() const noexcept { return case_; }
    /// The source of `noSourceImage`, else empty.
    [[nodiscard]] const std::filesystem::path& url() const noexcept { return url_; }

private:
    ComposeError(Case kind, const std::string& text, std::filesystem::path url = {})
        : Error(text),
          case_(kind),
          url_(std::move(url)) {}

    Case case_;
    std::filesystem::path url_;
};

/// Reads the widest image of `source` (an icon container or any raster format that Qt reads), draws
/// `label` onto it at 1024, 512, 256, 128, 64, 32 and 16 pixels, and writes these as an icon
/// container to `destination`, replacing an existing file. A label without visible text leaves the
/// picture unchanged; a size that can't be drawn is left out.
/// Throws `ComposeError` and nothing else: `noSourceImage` before anything is written, or
/// `destinationFailed`, after which a part of the file may remain. Any thread, concurrently;
/// text needs the font engine, see `ensureFontEngine`.
void compose(const std::filesystem::path& source, const IconLabel& label,
             const std::filesystem::path& destination);

/// Returns what `compose` writes. Throws `ComposeError`.
[[nodiscard]] std::string composed(const std::filesystem::path& source, const IconLabel& label);

/// Returns the icon of an application, in any form that `widestAppIconImage` reads, as an icon
/// container; with the label, if it has visible text. Images larger than the source are left out,
/// except for one. Throws `ComposeError`. Any thread.
[[nodiscard]] std::string converted(const std::filesystem::path& source,
                                    const std::optional<IconLabel>& label);

} // namespace quorvel::IconComposer
