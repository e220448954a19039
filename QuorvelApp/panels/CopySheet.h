#pragma once

#include "QuorvelApp/model/BackgroundCopy.h"

class QWidget;

namespace quorvel {

/// Shows over `window` how far the copy is, with a button that cancels it, until the copy's object
/// is destroyed.
void showCopySheet(BackgroundCopy& copy, QWidget* window);

} // namespace quorvel
