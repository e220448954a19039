#include "LaunchKit/Icons/IcnsFile.h"

#include "LaunchKit/Icons/IcnsPixels.h"
#include "LaunchKit/Icons/ImageFile.h"
#include "LaunchKit/Icons/Jpeg2000Image.h"
#include "Platform/files/FileReading.h"

#include <algorithm>
#include <numeric>

namespace quorvel {

namespace {

// A file may contain any number of broken images; no more than this are tried.
constexpr std::size_t maximumAttempts = 24;

IcnsEncoding rgbEncoding(std::string_view payload, const IcnsType& type) {
    return isRaw32(payload, type) ? IcnsEncoding::raw32 : IcnsEncoding::rle24;
}

// Returns how a payload of one of the newer types is stored, if it has the type's size.
std::optional<IcnsEncoding> fileEncoding(std::string_view payload, const IcnsType& type) {
    const QSize size(type.width, type.height);
    if (isPng(payload)) {
        return pngSize(payload) == size ? std::optional(IcnsEncoding::png) : std::nullopt;
    }
    if (isJpeg2000(payload)) {
        return jpeg2000Size(payload) == size ? std::optional(IcnsEncoding::jpeg2000) : std::nullopt;
    }
    if (payload.starts_with("ARGB")) {
        return IcnsEncoding::argb;
    }
    return type.form == IcnsForm::fileOrRgb ? std::optional(rgbEncoding(payload, type))
                                            : std::nullopt;
}

std::optional<IcnsEncoding> encodingOf(std::string_view payload, const IcnsType& type) {
    if (payload.empty()) {
        return std::nullopt;
    }
    switch (type.form) {
    case IcnsForm::file:
    case IcnsForm::fileOrRgb:
        return fileEncoding(payload, type);
    case IcnsForm::rgb:
        return rgbEncoding(payload, type);
    case IcnsForm::indexed8:
        return IcnsEncoding::indexed8;
    case IcnsForm::indexed4:
        return IcnsEncoding::indexed4;
    case IcnsForm::bitmap:
        return IcnsEncoding::bitmap;
    }
    return std::nullopt;
}

// The order in which a family's images are listed: those with fewer colors come last.
int rank(IcnsForm form) {
    return form == IcnsForm::bitmap     ? 3
           : form == IcnsForm::indexed4 ? 2
                                        : form == IcnsForm::indexed8;
}

} // namespace

class IcnsFile::Contents {
public:
    // The bytes must not move, since the families refer to them.
    explicit Contents(std::string bytes)
        : bytes_(std::move(bytes)),
          families_(icnsFamilies(bytes_)) {
        for (const IcnsFamily& family : families_) {
            addImagesOf(family);
        }
    }
    Contents(const Contents&) = delete;
    Contents& operator=(const Contents&) = delete;

    [[nodiscard]] const std::vector<IcnsEntry>& entries() const { return entries_; }

    [[nodiscard]] QImage decode(std::size_t index) const {
        const Source& source = sources_.at(index);
        const QSize size(source.type->width, source.type->height);
        switch (entries_[index].encoding) {
        case IcnsEncoding::png:
            return pngImage(source.payload, size);
        case IcnsEncoding::jpeg2000:
            return jpeg2000Image(source.payload, size);
        case IcnsEncoding::argb:
            return argbImage(source.payload, source.type->width);
        case IcnsEncoding::rle24:
        case IcnsEncoding::raw32:
            return rgbImage(source.payload, *source.type, *source.family);
        case IcnsEncoding::indexed8:
        case IcnsEncoding::indexed4:
        case IcnsEncoding::bitmap:
            break;
        }
        return legacyImage(source.payload, *source.type, *source.family);
    }

private:
    // Where an entry's pixels come from.
    struct Source {
        std::string_view payload;
        const IcnsType* type;
        const IcnsFamily* family;
    };

    void addImagesOf(const IcnsFamily& family) {
        std::vector<Source> images;
        for (const IcnsChunk& chunk : family) {
            if (const IcnsType* type = icnsType(chunk.code)) {
                images.push_back({chunk.payload, type, &family});
            }
        }
        std::stable_sort(images.begin(), images.end(), [](const Source& a, const Source& b) {
            return rank(a.type->form) < rank(b.type->form);
        });
        for (const Source& image : images) {
            if (const auto encoding = encodingOf(image.payload, *image.type)) {
                entries_.push_back(
                    {icnsName(image.type->code), *encoding, image.type->width, image.type->height});
                sources_.push_back(image);
            }
        }
    }

    std::string bytes_;
    std::vector<IcnsFamily> families_;
    std::vector<IcnsEntry> entries_{};
    std::vector<Source> sources_{};
};

IcnsFile::IcnsFile(std::shared_ptr<const Contents> contents) : contents_(std::move(contents)) {}

std::optional<IcnsFile> IcnsFile::read(const std::filesystem::path& file) {
    std::optional<std::string> bytes = readFile(file, maximumFileSize);
    return bytes ? parse(std::move(*bytes)) : std::nullopt;
}

std::optional<IcnsFile> IcnsFile::parse(std::string bytes) {
    if (!isIcns(bytes) || bytes.size() > maximumFileSize) {
        return std::nullopt;
    }
    return IcnsFile(std::make_shared<const Contents>(std::move(bytes)));
}

const std::vector<IcnsEntry>& IcnsFile::entries() const {
    return contents_->entries();
}

QImage IcnsFile::decode(std::size_t index) const {
    return contents_->decode(index);
}

QImage IcnsFile::widest() const {
    std::vector<std::size_t> order(entries().size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return entries()[a].width > entries()[b].width;
    });
    return firstDecodable(order);
}

QImage IcnsFile::nearest(int side) const {
    std::vector<std::size_t> order(entries().size());
    std::iota(order.begin(), order.end(), 0U);
    // Those that are wide enough come first, in ascending order; the others follow, widest first.
    const auto rank = [&](std::size_t index) {
        const int width = entries()[index].width;
        return std::pair(width < side, width < side ? -width : width);
    };
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return rank(a) < rank(b); });
    return firstDecodable(order);
}

bool IcnsFile::isDecodable(int side) const {
    return !nearest(side).isNull();
}

QImage IcnsFile::firstDecodable(const std::vector<std::size_t>& order) const {
    for (std::size_t index = 0; index < std::min(order.size(), maximumAttempts); ++index) {
        if (QImage image = decode(order[index]); !image.isNull()) {
            return image;
        }
    }
    return {};
}

} // namespace quorvel
