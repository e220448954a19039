#include "CommandLine/ProgressBar.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <string>
#include <utility>

namespace quorvel {
namespace {

constexpr int width = 40;

} // namespace

void ProgressBar::show(double fraction) {
    if (!context_.outputIsTerminal) {
        return;
    }
    isShown_ = true;
    const int full = static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * width));
    std::string bar = "\r[";
    for (int column = 0; column < width; ++column) {
        bar += column < full ? '#' : ' ';
    }
    context_.errors << bar << ']' << std::flush;
}

void ProgressBar::erase() {
    if (std::exchange(isShown_, false)) {
        context_.errors << '\r' << std::string(width + 2, ' ') << '\r' << std::flush;
    }
}

} // namespace quorvel
