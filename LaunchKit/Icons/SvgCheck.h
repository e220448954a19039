#pragma once

#include <QByteArray>

namespace quorvel {

/// Returns whether an SVG drawing is well-formed and can be drawn in bounded time and memory: its
/// elements repeat one another at most `maximumSvgElements` times, it declares no entities, and its
/// pictures are inside it and of ordinary size.
[[nodiscard]] bool isHarmlessSvg(const QByteArray& bytes);

} // namespace quorvel
