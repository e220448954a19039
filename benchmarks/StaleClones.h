#pragma once

#include <filesystem>

namespace quorvel::benchmarks {

/// Makes that many web clones with an icon, whose data is in `folder`, and publishes them in the
/// menu. The clones are in the usual folder of clones. Throws if that fails.
void makeClones(const std::filesystem::path& folder, int count);

/// Leaves all clones as an update does: with a runner of another version, of the same size.
void makeStale();

} // namespace quorvel::benchmarks
