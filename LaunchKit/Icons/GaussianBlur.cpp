#include "LaunchKit/Icons/GaussianBlur.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quorvel {
namespace {

// The weights of the pixels from -radius to radius around one pixel.
struct Kernel {
    int radius = 0;
    std::vector<float> weights{};

    [[nodiscard]] float at(int offset) const {
        const int index = offset + radius;
        return weights[static_cast<std::size_t>(index)];
    }
};

// Each weight is the Gaussian integrated over the pixel, so that a narrow one is exact.
Kernel kernel(double deviation, double center) {
    Kernel result;
    result.radius = static_cast<int>(std::ceil(3 * deviation + std::abs(center)));
    const auto below = [&](double x) {
        return std::erf((x - center) / (deviation * std::sqrt(2)));
    };
    double sum = 0;
    for (int offset = -result.radius; offset <= result.radius; ++offset) {
        const double weight = below(offset + 0.5) - below(offset - 0.5);
        result.weights.push_back(static_cast<float>(weight));
        sum += weight;
    }
    for (float& weight : result.weights) {
        weight = static_cast<float>(weight / sum);
    }
    return result;
}

using Plane = std::vector<float>;

// Adds `source`, moved `shift` pixels to the right, times `weight`, within the line.
void addShifted(const float* source, float* target, int length, int shift, float weight) {
    const int first = std::max(0, shift);
    const int last = std::min(length, length + shift);
    for (int index = first; index < last; ++index) {
        target[index] += source[index - shift] * weight;
    }
}

// Where line `y` begins.
std::size_t lineStart(int y, int width) {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
}

void blurRows(const Plane& source, Plane& target, int width, int height, const Kernel& kernel) {
    for (int y = 0; y < height; ++y) {
        for (int shift = -kernel.radius; shift <= kernel.radius; ++shift) {
            addShifted(&source[lineStart(y, width)], &target[lineStart(y, width)], width, shift,
                       kernel.at(shift));
        }
    }
}

void blurColumns(const Plane& source, Plane& target, int width, int height, const Kernel& kernel) {
    for (int y = 0; y < height; ++y) {
        for (int shift = -kernel.radius; shift <= kernel.radius; ++shift) {
            const int from = y - shift;
            if (from >= 0 && from < height) {
                addShifted(&source[lineStart(from, width)], &target[lineStart(y, width)], width, 0,
                           kernel.at(shift));
            }
        }
    }
}

} // namespace

QImage gaussianBlurred(const QImage& coverage, double deviation, double drop) {
    const int width = coverage.width();
    const int height = coverage.height();
    Plane plane;
    plane.reserve(static_cast<std::size_t>(width) * height);
    for (int y = 0; y < height; ++y) {
        const uchar* line = coverage.constScanLine(y);
        plane.insert(plane.end(), line, line + width);
    }
    Plane rows(plane.size());
    blurRows(plane, rows, width, height, kernel(deviation, 0));
    std::fill(plane.begin(), plane.end(), 0.0F);
    blurColumns(rows, plane, width, height, kernel(deviation, drop));
    QImage result(coverage.size(), QImage::Format_Alpha8);
    for (int y = 0; y < height; ++y) {
        const float* line = &plane[static_cast<std::size_t>(y) * width];
        std::transform(line, line + width, result.scanLine(y), [](float value) {
            return static_cast<uchar>(std::min(value + 0.5F, 255.0F));
        });
    }
    return result;
}

} // namespace quorvel
