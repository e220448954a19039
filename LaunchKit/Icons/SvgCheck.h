#pragma once

#include <QByteArray>

namespace quorvel {

/// Returns whether an SVG drawing is well-formed and can be drawn in bounded time and memory: it
/// has at most `maximumSvgElements` elements, counting each as often as it is repeated, it declares
/// no entities, and its pictures are inside it and of ordinary size.
[[nodiscard]] bool isHarmlessSvg(const QByteArray& bytes);

} // namespace quorvel
