#include "QuorvelApp/model/DisplayText.h"

#include "Base/LineBreak.h"
#include "Base/UnsafeText.h"
#include "QuorvelApp/model/QtText.h"

#include <QTextBoundaryFinder>

#include <string>
#include <string_view>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

// A word of this length fits into the narrowest label.
constexpr int longestWord = 24;

// Returns the beginning of `text`, at most `limit` UTF-16 units, followed by "…".
QString beginning(std::string_view text, qsizetype limit) {
    // No unit takes more than three bytes, so a truncated last character is beyond the limit.
    const auto enough = static_cast<std::size_t>(3 * (limit + 2));
    QString start = qtText(text.substr(0, enough));
    if (start.size() <= limit) {
        return start;
    }
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, start);
    characters.setPosition(limit);
    qsizetype end = characters.isAtBoundary() ? limit : characters.toPreviousBoundary();
    if (end <= 0) { // a single endless character
        end = start[limit].isLowSurrogate() ? limit - 1 : limit;
    }
    return start.left(end) + u'…';
}

QString safeForDisplay(const QString& text, char16_t lineBreak) {
    QString result;
    bool afterReturn = false;
    UnsafeText unsafe;
    const std::u32string scalars = text.toStdU32String();
    for (std::size_t index = 0; index < scalars.size(); ++index) {
        const char32_t scalar = scalars[index];
        const bool isUnsafe =
            unsafe.isUnsafeForDisplay(scalar, std::u32string_view(scalars).substr(index + 1));
        // A carriage return and a line feed are one line break.
        if (isLineBreak(scalar)) {
            if (scalar != U'\n' || !afterReturn) {
                result += QChar(lineBreak);
            }
        } else if (scalar == U'\t') {
            result += u' ';
        } else {
            result +=
                isUnsafe ? QString(QChar::ReplacementCharacter) : QString::fromUcs4(&scalar, 1);
        }
        afterReturn = scalar == U'\r';
    }
    return result;
}

// Inserts a mark every few characters of a long word, never inside a combined character.
QString brokenWord(const QString& word) {
    if (word.size() <= longestWord) {
        return word;
    }
    QString result;
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, word);
    qsizetype start = 0;
    for (auto end = characters.toNextBoundary(); end > 0; end = characters.toNextBoundary()) {
        result += word.mid(start, end - start) + breakMark;
        start = end;
    }
    return result;
}

} // namespace

QString displayText(std::string_view text) {
    return safeForDisplay(beginning(text, longestDisplayText), u'\n');
}

QString displayLine(std::string_view text) {
    return safeForDisplay(beginning(text, longestDisplayLine), u' ');
}

QString breakable(const QString& text) {
    QString result;
    QString word;
    for (const QChar character : text) {
        if (character.isSpace()) {
            result += brokenWord(word) + character;
            word.clear();
        } else if (u"/._-"_s.contains(character)) {
            result += brokenWord(word) + character + breakMark;
            word.clear();
        } else {
            word += character;
        }
    }
    return result + brokenWord(word);
}

QString toolTipText(const QString& text) {
    return text.isEmpty() ? text
                          : u"<qt>"_s + text.toHtmlEscaped().replace(u'\n', u"<br>"_s) + u"</qt>"_s;
}

} // namespace quorvel
