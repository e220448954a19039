#pragma once

#include <functional>
#include <set>
#include <string>

namespace quorvel {

/// Returns those of the files that `isPresent` confirms. Asks about several folders at a time, and
/// for two seconds at most: a folder that doesn't answer, such as that of a server that is gone,
/// delays no other, and its files count as missing; so do those for which there is no thread left.
/// `isPresent` is called by other threads, which may still wait in it afterwards. Files are paths,
/// or names that lie in no folder.
[[nodiscard]] std::set<std::string>
presentAmong(const std::set<std::string>& files,
             const std::function<bool(const std::string&)>& isPresent);

} // namespace quorvel
