#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What a site's page says about itself, for the clone that is made of it.
namespace quorvel {

struct SiteHead {
    std::string title{};
    /// The addresses of its icons as the page has them, the most suitable first.
    std::vector<std::string> icons{};
};

/// Returns what the beginning of a page says. Takes any bytes, in time in proportion to their
/// number.
[[nodiscard]] SiteHead siteHead(std::string_view html);

} // namespace quorvel
