#pragma once

#include "benchmarks/Comparison.h"

#include <filesystem>

/// Each works in the given empty folder and returns its rows of the table.
namespace quorvel::benchmarks {

using Benchmark = std::vector<Row> (*)(const std::filesystem::path& folder);

[[nodiscard]] std::vector<Row> registryRows(const std::filesystem::path& folder);
[[nodiscard]] std::vector<Row> generatorRows(const std::filesystem::path& folder);
[[nodiscard]] std::vector<Row> runnerRows(const std::filesystem::path& folder);
[[nodiscard]] std::vector<Row> runningApplicationsRows(const std::filesystem::path& folder);
[[nodiscard]] std::vector<Row> catalogRows(const std::filesystem::path& folder);
[[nodiscard]] std::vector<Row> entriesRows(const std::filesystem::path& folder);
[[nodiscard]] std::vector<Row> menuRows(const std::filesystem::path& folder);
[[nodiscard]] std::vector<Row> recorderRows(const std::filesystem::path& folder);
[[nodiscard]] std::vector<Row> refreshRows(const std::filesystem::path& folder);
[[nodiscard]] std::vector<Row> copyRows(const std::filesystem::path& folder);
[[nodiscard]] std::vector<Row> iconRows(const std::filesystem::path& folder);

} // namespace quorvel::benchmarks
