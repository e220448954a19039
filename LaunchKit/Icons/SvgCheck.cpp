#include "LaunchKit/Icons/SvgCheck.h"

#include "LaunchKit/Icons/ImageFile.h"
#include "LaunchKit/Icons/SvgImage.h"

#include <QBuffer>
#include <QImageReader>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include <map>
#include <vector>

namespace quorvel {
namespace {

constexpr std::size_t maximumDepth = 200;

// Far more than drawings have, and they take a few megabytes.
constexpr std::size_t maximumReferences = 100000;

// A part of the drawing that other parts can repeat.
struct Part {
    std::size_t elements = 0;
    std::vector<QString> repeated{};
    bool isCounting = false;
    bool isCounted = false;
};

// Pictures in other files are not read, and those inside must be of ordinary size.
bool isHarmlessPicture(const QString& address) {
    const QString base64 = QStringLiteral(";base64,");
    const qsizetype start = address.indexOf(base64);
    if (!address.startsWith(QStringLiteral("data:")) || start < 0) {
        return false;
    }
    QByteArray bytes = QByteArray::fromBase64(address.mid(start + base64.size()).toLatin1());
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    const QSize size = QImageReader(&buffer).size();
    return size.isValid() && size.width() <= 2048 && size.height() <= 2048;
}

class Drawing {
public:
    [[nodiscard]] bool read(const QByteArray& bytes) {
        QXmlStreamReader reader(bytes);
        while (!reader.atEnd()) {
            const auto token = reader.readNext();
            if (token == QXmlStreamReader::StartElement && !open(reader)) {
                return false;
            }
            if (token == QXmlStreamReader::EndElement) {
                opened_.pop_back();
            }
            if (token == QXmlStreamReader::DTD && !reader.entityDeclarations().isEmpty()) {
                return false;
            }
        }
        return !reader.hasError();
    }

    // Counts repetitions; a part that contains itself counts as too many, and so do parts that
    // repeat each other so deeply that counting them takes a large stack.
    [[nodiscard]] std::size_t elementsIn(const QString& id, std::size_t depth = 0) {
        const auto found = parts_.find(id);
        if (found == parts_.end()) {
            return 0;
        }
        Part& part = found->second;
        if (part.isCounting || depth == maximumDepth) {
            return maximumSvgElements + 1;
        }
        part.isCounting = !part.isCounted;
        for (const QString& other : std::exchange(part.repeated, {})) {
            if (part.elements <= maximumSvgElements) {
                part.elements += elementsIn(other, depth + 1);
            }
        }
        part.isCounting = false;
        part.isCounted = true;
        return part.elements;
    }

private:
    bool open(const QXmlStreamReader& reader) {
        if (opened_.size() == maximumDepth || ++total_ > maximumSvgElements) {
            return false;
        }
        const QXmlStreamAttributes attributes = reader.attributes();
        const QString id = attributes.value(QLatin1String("id")).toString();
        opened_.push_back(opened_.empty() ? QString() : id);
        for (const QString& each : opened_) {
            if (isPart(each)) {
                ++parts_[each].elements;
            }
        }
        const bool isPicture = reader.name() == QLatin1String("image");
        for (const QXmlStreamAttribute& attribute : attributes) {
            const bool isLink = attribute.name() == QLatin1String("href");
            const QString value = attribute.value().toString();
            if (isPicture && isLink && !isHarmlessPicture(value)) {
                return false;
            }
            if (!addReferences(isLink ? QStringLiteral("url(") + value + QLatin1Char(')')
                                      : value)) {
                return false;
            }
        }
        return true;
    }

    // Returns false if there are too many to remember.
    bool addReferences(const QString& value) {
        static const QRegularExpression reference(QStringLiteral("url\\(\\s*['\"]?#([^)'\"]+)"));
        auto matches = reference.globalMatch(value);
        while (matches.hasNext()) {
            const QString id = matches.next().captured(1);
            for (const QString& each : opened_) {
                if (isPart(each)) {
                    if (++references_ > maximumReferences) {
                        return false;
                    }
                    parts_[each].repeated.push_back(id);
                }
            }
        }
        return true;
    }

    // Only the whole drawing and elements with an id can be asked for.
    [[nodiscard]] bool isPart(const QString& opened) const {
        return !opened.isEmpty() || &opened == &opened_.front();
    }

    std::map<QString, Part> parts_{}; ///< by id; the whole drawing by an empty one
    std::vector<QString> opened_{};   ///< the ids of the elements around the current one
    std::size_t total_ = 0;
    std::size_t references_ = 0; ///< once for each part that they are in
};

} // namespace

bool isHarmlessSvg(const QByteArray& bytes) {
    Drawing drawing;
    return drawing.read(bytes) && drawing.elementsIn(QString()) <= maximumSvgElements;
}

} // namespace quorvel
