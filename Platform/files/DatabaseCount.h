#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>

namespace quorvel {

/// Returns the number that `query` yields in a copy of an SQLite database, made together with its
/// journals in the folder `scratch`, which is left empty: opening a database may change it and the
/// files beside it. Returns std::nullopt if it isn't one, lacks what the query names, or is larger
/// than 256 MiB together with its journals. Always std::nullopt on macOS, where nothing needs it.
[[nodiscard]] std::optional<std::size_t> countInDatabase(const std::filesystem::path& database,
                                                         const std::filesystem::path& scratch,
                                                         const char* query);

} // namespace quorvel
