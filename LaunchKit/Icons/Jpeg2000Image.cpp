#include "LaunchKit/Icons/Jpeg2000Image.h"

#include "LaunchKit/Icons/Bytes.h"
#include "LaunchKit/Icons/DecodingMemory.h"

#include <openjpeg.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

namespace quorvel {
namespace {

constexpr std::string_view fileMark("\0\0\0\x0CjP  \x0D\x0A\x87\x0A", 12);
constexpr std::string_view codestreamMark("\xFF\x4F\xFF\x51", 4);
constexpr std::uint64_t maximumTiles = 256;
constexpr std::size_t mostComponents = 4;

// Returns the contents of the file's first codestream box; empty if there is none.
std::string_view codestream(std::string_view bytes) {
    while (!bytes.starts_with(codestreamMark) && bytes.size() >= 8) {
        std::uint64_t size = bigEndian32(bytes);
        std::size_t header = 8;
        if (size == 1 && bytes.size() >= 16) {
            size =
                std::uint64_t{bigEndian32(bytes.substr(8))} << 32U | bigEndian32(bytes.substr(12));
            header = 16;
        }
        size = size == 0 ? bytes.size() : size;
        if (size < header || size > bytes.size()) {
            return {};
        }
        if (bytes.substr(4, 4) == "jp2c") {
            return bytes.substr(header, static_cast<std::size_t>(size) - header);
        }
        bytes.remove_prefix(static_cast<std::size_t>(size));
    }
    return bytes;
}

// Returns the number of components that the codestream declares; 0 if it is too short.
std::uint64_t componentCount(std::string_view stream) {
    constexpr std::size_t offset = 40;
    return stream.size() < offset + 2 ? 0 : bigEndian32(stream.substr(offset - 2)) & 0xFFFFU;
}

// Reads memory as OpenJPEG reads a file.
struct MemoryReader {
    std::string_view bytes;
    std::size_t position = 0;

    static OPJ_SIZE_T read(void* buffer, OPJ_SIZE_T size, void* reader) {
        auto& self = *static_cast<MemoryReader*>(reader);
        const std::size_t count = std::min(size, self.bytes.size() - self.position);
        if (count == 0) {
            return static_cast<OPJ_SIZE_T>(-1);
        }
        std::memcpy(buffer, self.bytes.data() + self.position, count);
        self.position += count;
        return count;
    }

    static OPJ_OFF_T skip(OPJ_OFF_T size, void* reader) {
        auto& self = *static_cast<MemoryReader*>(reader);
        const auto left = static_cast<OPJ_OFF_T>(self.bytes.size() - self.position);
        if (size < 0 || left == 0) {
            return -1;
        }
        const OPJ_OFF_T count = std::min(size, left);
        self.position += static_cast<std::size_t>(count);
        return count;
    }

    static OPJ_BOOL seek(OPJ_OFF_T position, void* reader) {
        auto& self = *static_cast<MemoryReader*>(reader);
        if (position < 0 || static_cast<std::uint64_t>(position) > self.bytes.size()) {
            return OPJ_FALSE;
        }
        self.position = static_cast<std::size_t>(position);
        return OPJ_TRUE;
    }
};

template<auto destroy>
struct Destroyer {
    template<typename Handle>
    void operator()(Handle* handle) const {
        destroy(handle);
    }
};
using Codec = std::unique_ptr<opj_codec_t, Destroyer<opj_destroy_codec>>;
using Stream = std::unique_ptr<opj_stream_t, Destroyer<opj_stream_destroy>>;
using Image = std::unique_ptr<opj_image_t, Destroyer<opj_image_destroy>>;

Stream streamOf(MemoryReader& reader) {
    Stream stream(opj_stream_default_create(OPJ_TRUE));
    opj_stream_set_user_data(stream.get(), &reader, nullptr);
    opj_stream_set_user_data_length(stream.get(), reader.bytes.size());
    opj_stream_set_read_function(stream.get(), MemoryReader::read);
    opj_stream_set_skip_function(stream.get(), MemoryReader::skip);
    opj_stream_set_seek_function(stream.get(), MemoryReader::seek);
    return stream;
}

bool hasSize(const opj_image_t& image, QSize size) {
    return image.x0 <= image.x1 && image.y0 <= image.y1 &&
           image.x1 - image.x0 == static_cast<OPJ_UINT32>(size.width()) &&
           image.y1 - image.y0 == static_cast<OPJ_UINT32>(size.height());
}

// Returns how often the size must be halved for the decoder's components, four bytes per pixel, to
// fit.
OPJ_UINT32 reduction(QSize size, std::uint64_t components) {
    constexpr std::uint64_t most = std::uint64_t{64} << 20U;
    const auto pixels =
        static_cast<std::uint64_t>(size.width()) * static_cast<std::uint64_t>(size.height());
    OPJ_UINT32 halvings = 0;
    while ((pixels * components * 4) >> (2 * halvings) > most) {
        ++halvings;
    }
    return halvings;
}

Image decoded(std::string_view bytes, QSize size, OPJ_UINT32 halvings) {
    MemoryReader reader{bytes};
    const Stream stream = streamOf(reader);
    const Codec codec(
        opj_create_decompress(bytes.starts_with(codestreamMark) ? OPJ_CODEC_J2K : OPJ_CODEC_JP2));
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    parameters.cp_reduce = halvings;
    opj_image_t* header = nullptr;
    if (!stream || !codec || opj_setup_decoder(codec.get(), &parameters) == OPJ_FALSE) {
        return nullptr;
    }
    const bool hasHeader = opj_read_header(stream.get(), codec.get(), &header) != OPJ_FALSE;
    Image image(header);
    if (!hasHeader || !image || !hasSize(*image, size) ||
        opj_decode(codec.get(), stream.get(), image.get()) == OPJ_FALSE ||
        opj_end_decompress(codec.get(), stream.get()) == OPJ_FALSE) {
        return nullptr;
    }
    return image;
}

// One component, read at the image's coordinates as 8-bit levels.
class Plane {
public:
    explicit Plane(const opj_image_comp_t& component)
        : component_(&component),
          zero_(component.sgnd != 0 ? 1 << (component.prec - 1) : 0) {}

    [[nodiscard]] int at(int x, int y) const {
        const auto column =
            std::min(static_cast<OPJ_UINT32>(x) / component_->dx, component_->w - 1);
        const auto row = std::min(static_cast<OPJ_UINT32>(y) / component_->dy, component_->h - 1);
        const int value = component_->data[std::size_t{row} * component_->w + column] + zero_;
        const int top = (1 << component_->prec) - 1;
        return (std::clamp(value, 0, top) * 255 + top / 2) / top;
    }

private:
    const opj_image_comp_t* component_;
    int zero_;
};

bool isUsable(const opj_image_comp_t& component) {
    constexpr OPJ_UINT32 deepest = 16;
    return component.data != nullptr && component.w > 0 && component.h > 0 && component.dx > 0 &&
           component.dy > 0 && component.prec >= 1 && component.prec <= deepest;
}

std::uint8_t level(double value) {
    return static_cast<std::uint8_t>(std::clamp(value + 0.5, 0.0, 255.0));
}

QRgb rgbFromYcc(int y, int blueness, int redness, int alpha) {
    const double cb = blueness - 128.0;
    const double cr = redness - 128.0;
    return qRgba(level(y + 1.402 * cr), level(y - 0.344136 * cb - 0.714136 * cr),
                 level(y + 1.772 * cb), alpha);
}

QImage imageOf(const opj_image_t& source, QSize size) {
    const std::span components(source.comps, source.numcomps);
    if (components.empty() || components.size() > mostComponents ||
        !std::all_of(components.begin(), components.end(), isUsable)) {
        return {};
    }
    const std::vector<Plane> planes(components.begin(), components.end());
    const bool gray = planes.size() < 3;
    const bool alpha = planes.size() % 2 == 0;
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const int first = planes[0].at(x, y);
            const int second = gray ? first : planes[1].at(x, y);
            const int third = gray ? first : planes[2].at(x, y);
            const int opacity = alpha ? planes.back().at(x, y) : 255;
            line[x] = source.color_space == OPJ_CLRSPC_SYCC && !gray
                          ? rgbFromYcc(first, second, third, opacity)
                          : qRgba(first, second, third, opacity);
        }
    }
    return image;
}

} // namespace

bool isJpeg2000(std::string_view bytes) noexcept {
    return bytes.starts_with(fileMark) || bytes.starts_with(codestreamMark);
}

QSize jpeg2000Size(std::string_view bytes) {
    const std::string_view stream = codestream(bytes);
    const std::uint64_t components = componentCount(stream);
    if (!stream.starts_with(codestreamMark) || components == 0 || components > mostComponents) {
        return {};
    }
    const auto number = [&](std::size_t index) {
        return std::uint64_t{bigEndian32(stream.substr(8 + 4 * index))};
    };
    const std::array<std::uint64_t, 8> siz{number(0), number(1), number(2), number(3),
                                           number(4), number(5), number(6), number(7)};
    const auto [right, bottom, left, top, tileWidth, tileHeight, tileLeft, tileTop] = siz;
    const bool sane = right > left && bottom > top && right - left <= maximumJpeg2000Side &&
                      bottom - top <= maximumJpeg2000Side && tileWidth > 0 && tileHeight > 0 &&
                      tileLeft <= left && tileTop <= top;
    if (!sane || ((right - tileLeft) / tileWidth + 1) * ((bottom - tileTop) / tileHeight + 1) >
                     maximumTiles) {
        return {};
    }
    return {static_cast<int>(right - left), static_cast<int>(bottom - top)};
}

QImage jpeg2000Image(std::string_view bytes, QSize size) {
    if (jpeg2000Size(bytes) != size) {
        return {};
    }
    const std::uint64_t components = componentCount(codestream(bytes));
    const OPJ_UINT32 halvings = reduction(size, components);
    const auto halved = [&](int side) { return ((side - 1) >> halvings) + 1; };
    const QSize shown(halved(size.width()), halved(size.height()));
    const std::size_t bytesPerPixel = 4 * (components + 1);
    const DecodingMemory memory(bytesPerPixel * static_cast<std::size_t>(shown.width()) *
                                static_cast<std::size_t>(shown.height()));
    const Image image = decoded(bytes, size, halvings);
    return image ? imageOf(*image, shown) : QImage();
}

} // namespace quorvel
