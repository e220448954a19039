#pragma once

#include <QColor>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// How values read on the screen. UTF-8, no markup.
namespace quorvel {

struct InstanceConfig;

/// What a clone runs, in one line.
[[nodiscard]] std::string sourceSummary(const InstanceConfig& config);

/// A strategy's raw value for a person; an unknown one comes back unchanged.
[[nodiscard]] std::string strategyLabel(std::string_view rawValue);

/// "#RRGGBB" in sRGB, without the opacity; white for a colour that has no such form.
[[nodiscard]] std::string hexRGB(const QColor& color);

/// One line of a clone's details.
struct DetailRow {
    std::string label{};
    std::string value{}; ///< may hold line breaks
    bool mono = false;

    bool operator==(const DetailRow&) const = default;
};

/// The details of a clone, top to bottom.
[[nodiscard]] std::vector<DetailRow> detailRows(const InstanceConfig& config,
                                                const std::filesystem::path& bundleURL);

} // namespace quorvel
