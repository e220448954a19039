#include "QuorvelApp/AutomaticNames.h"

#include "QuorvelApp/QtText.h"

#include <QStringView>
#include <QUrl>

#include <algorithm>

namespace quorvel {
namespace {

// QUrl lower-cases and decodes hosts; the name is made of what was typed.
QString typedHost(const QString& address) {
    QString authority = address.sliced(address.indexOf(QLatin1String("://")) + 3);
    for (qsizetype index = 0; index < authority.size(); ++index) {
        if (QStringView(u"/?#").contains(authority[index])) {
            authority.truncate(index);
        }
    }
    authority = authority.sliced(authority.lastIndexOf(u'@') + 1);
    if (authority.startsWith(u'[')) {
        return authority.sliced(1, std::max<qsizetype>(0, authority.indexOf(u']') - 1));
    }
    const qsizetype port = authority.indexOf(u':');
    return port < 0 ? authority : authority.first(port);
}

bool belongsToWord(char32_t scalar) {
    return QChar::isLetterOrNumber(scalar) || QChar::isMark(scalar) || scalar == U'\'' ||
           scalar == U'\u2019';
}

} // namespace

std::optional<std::string> nameForWebAddress(std::string_view address) {
    QString text = qtText(address);
    if (!text.contains(QLatin1String("://"))) {
        text.prepend(QLatin1String("https://"));
    }
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty()) {
        return std::nullopt;
    }
    const QString host = typedHost(text).remove(QLatin1String("www."));
    return capitalizingWords(host.toStdString());
}

std::optional<std::string> nameForCommand(std::string_view path) {
    while (path.ends_with('/')) {
        path.remove_suffix(1);
    }
    const std::string_view last = path.substr(path.find_last_of('/') + 1);
    if (last.empty()) {
        return std::nullopt;
    }
    return capitalizingWords(last);
}

std::string capitalizingWords(std::string_view text) {
    QString result;
    bool firstOfWord = true;
    for (const char32_t scalar : qtText(text).toUcs4()) {
        const bool inWord = belongsToWord(scalar);
        const bool letter = QChar::isLetter(scalar);
        result += QChar::fromUcs4(!letter       ? scalar
                                  : firstOfWord ? QChar::toTitleCase(scalar)
                                                : QChar::toLower(scalar));
        firstOfWord = !inWord || (firstOfWord && !letter);
    }
    return result.toStdString();
}

} // namespace quorvel
