#pragma once

#include "tests/support/TemporaryHome.h"

#include <filesystem>
#include <optional>
#include <string_view>

namespace quorvel::testing {

/// A folder on a file system other than that of `here`, if the machine has one.
class OtherVolume {
public:
    explicit OtherVolume(const std::filesystem::path& here);

    [[nodiscard]] bool exists() const { return folder_.has_value(); }
    [[nodiscard]] const std::filesystem::path& path() const { return folder_->path(); }
    [[nodiscard]] std::filesystem::path operator/(std::string_view name) const {
        return *folder_ / name;
    }

private:
    std::optional<TemporaryFolder> folder_{};
};

} // namespace quorvel::testing
