#include "tests/support/IcnsBuilder.h"

#include <openjpeg.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace quorvel::testing {
namespace {

// Memory that OpenJPEG writes to like a file.
struct MemoryWriter {
    std::string bytes{};
    std::size_t position = 0;

    static OPJ_SIZE_T write(void* buffer, OPJ_SIZE_T size, void* writer) {
        auto& self = *static_cast<MemoryWriter*>(writer);
        self.bytes.resize(std::max(self.bytes.size(), self.position + size));
        self.bytes.replace(self.position, size, static_cast<const char*>(buffer), size);
        self.position += size;
        return size;
    }
    static OPJ_OFF_T skip(OPJ_OFF_T size, void* writer) {
        auto& self = *static_cast<MemoryWriter*>(writer);
        self.position += static_cast<std::size_t>(size);
        self.bytes.resize(std::max(self.bytes.size(), self.position));
        return size;
    }
    static OPJ_BOOL seek(OPJ_OFF_T position, void* writer) {
        static_cast<MemoryWriter*>(writer)->position = static_cast<std::size_t>(position);
        return OPJ_TRUE;
    }
};

OPJ_UINT32 componentsOf(Jpeg2000Form form) {
    switch (form) {
    case Jpeg2000Form::gray:
        return 1;
    case Jpeg2000Form::grayAlpha:
        return 2;
    case Jpeg2000Form::rgba:
        return 4;
    case Jpeg2000Form::rgb:
    case Jpeg2000Form::ycc:
        break;
    }
    return 3;
}

std::array<int, 3> yccOf(QRgb pixel) {
    const double red = qRed(pixel);
    const double green = qGreen(pixel);
    const double blue = qBlue(pixel);
    return {static_cast<int>(std::lround(0.299 * red + 0.587 * green + 0.114 * blue)),
            static_cast<int>(-0.168736 * red - 0.331264 * green + 0.5 * blue + 128.5),
            static_cast<int>(0.5 * red - 0.418688 * green - 0.081312 * blue + 128.5)};
}

int sample(QRgb pixel, Jpeg2000Form form, OPJ_UINT32 component) {
    switch (form) {
    case Jpeg2000Form::gray:
    case Jpeg2000Form::grayAlpha:
        return component == 0 ? qGray(pixel) : qAlpha(pixel);
    case Jpeg2000Form::ycc:
        return yccOf(pixel).at(component);
    case Jpeg2000Form::rgb:
    case Jpeg2000Form::rgba:
        break;
    }
    return std::array{qRed(pixel), qGreen(pixel), qBlue(pixel), qAlpha(pixel)}.at(component);
}

OPJ_COLOR_SPACE colorSpaceOf(Jpeg2000Form form) {
    return form == Jpeg2000Form::ycc ? OPJ_CLRSPC_SYCC
           : componentsOf(form) < 3  ? OPJ_CLRSPC_GRAY
                                     : OPJ_CLRSPC_SRGB;
}

opj_image_t* imageOf(const QImage& source, Jpeg2000Form form) {
    const OPJ_UINT32 count = componentsOf(form);
    opj_image_cmptparm_t component{};
    component.dx = component.dy = 1;
    component.w = static_cast<OPJ_UINT32>(source.width());
    component.h = static_cast<OPJ_UINT32>(source.height());
    component.prec = 8;
    std::array<opj_image_cmptparm_t, 4> all{component, component, component, component};
    opj_image_t* image = opj_image_create(count, all.data(), colorSpaceOf(form));
    image->x1 = component.w;
    image->y1 = component.h;
    for (OPJ_UINT32 index = 0; index < count; ++index) {
        image->comps[index].alpha = index == count - 1 && count % 2 == 0 ? 1 : 0;
        for (int at = 0; at < source.width() * source.height(); ++at) {
            const QRgb pixel = source.pixel(at % source.width(), at / source.width());
            image->comps[index].data[at] = sample(pixel, form, index);
        }
    }
    return image;
}

} // namespace

std::string jpeg2000Of(const QImage& image, Jpeg2000Form form, bool bareCodestream) {
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    parameters.tcp_numlayers = 1;
    parameters.cp_disto_alloc = 1;
    parameters.numresolution = 3;
    opj_image_t* source = imageOf(image, form);
    opj_codec_t* codec = opj_create_compress(bareCodestream ? OPJ_CODEC_J2K : OPJ_CODEC_JP2);
    opj_stream_t* stream = opj_stream_default_create(OPJ_FALSE);
    MemoryWriter writer;
    opj_stream_set_user_data(stream, &writer, nullptr);
    opj_stream_set_write_function(stream, MemoryWriter::write);
    opj_stream_set_skip_function(stream, MemoryWriter::skip);
    opj_stream_set_seek_function(stream, MemoryWriter::seek);
    const bool written = opj_setup_encoder(codec, &parameters, source) != OPJ_FALSE &&
                         opj_start_compress(codec, source, stream) != OPJ_FALSE &&
                         opj_encode(codec, stream) != OPJ_FALSE &&
                         opj_end_compress(codec, stream) != OPJ_FALSE;
    opj_stream_destroy(stream);
    opj_destroy_codec(codec);
    opj_image_destroy(source);
    if (!written) {
        throw std::runtime_error("could not encode a JPEG 2000 image");
    }
    return writer.bytes;
}

} // namespace quorvel::testing
