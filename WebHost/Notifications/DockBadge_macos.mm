#include "WebHost/Notifications/DockBadge_macos.h"

#include "WebHost/NSText_macos.h"

namespace quorvel {
namespace {

// Returns a bar on the tile, over the icon.
NSProgressIndicator* showBar(NSDockTile* tile) {
    constexpr CGFloat height = 16;
    const NSRect whole = {{0, 0}, tile.size};
    NSImageView* const icon = [[NSImageView alloc] initWithFrame:whole];
    icon.image = NSApp.applicationIconImage;
    NSProgressIndicator* const bar =
        [[NSProgressIndicator alloc] initWithFrame:{{0, 0}, {whole.size.width, height}}];
    bar.style = NSProgressIndicatorStyleBar;
    bar.indeterminate = NO;
    bar.minValue = 0;
    bar.maxValue = 1;
    [icon addSubview:bar];
    tile.contentView = icon;
    return bar;
}

} // namespace

void DockBadge::setLabel(const std::optional<std::string>& label) {
    NSApp.dockTile.badgeLabel = label ? nsText(*label) : nil;
}

void DockBadge::setProgress(std::optional<double> progress) {
    NSDockTile* const tile = NSApp.dockTile;
    if (progress && bar_ == nil) {
        bar_ = showBar(tile);
    } else if (!progress && bar_ != nil) {
        tile.contentView = nil;
        bar_ = nil;
    }
    bar_.doubleValue = progress.value_or(0);
    [tile display];
}

} // namespace quorvel
