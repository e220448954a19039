#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

struct AppBundle;

/// The names by which an application's own files can be told from those of others.
class AppNames {
public:
    /// Of a bundle: its identifier and the identifier's last component. Of a desktop entry or an
    /// AppImage, also those of its program, its window and its sandbox, and the words that its
    /// title and its program have in common.
    explicit AppNames(const AppBundle& app);

    /// Returns whether one of them appears anywhere in the path, in any case.
    [[nodiscard]] bool appearIn(std::string_view path) const;

private:
    std::vector<std::string> names_;
    std::string locale_;
};

} // namespace quorvel
