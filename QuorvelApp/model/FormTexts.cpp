#include "QuorvelApp/model/FormTexts.h"

#include "Base/LineBreak.h"
#include "Base/Text.h"
#include "Presentation/JoinedText.h"
#include "QuorvelApp/model/QtText.h"

#include <QString>
#include <QStringList>

#include <algorithm>
#include <iterator>

namespace quorvel {
namespace {

bool isNewline(QChar character) {
    return isLineBreak(character.unicode());
}

template<typename Separates>
QStringList pieces(const QString& text, Separates separates) {
    QStringList result;
    for (auto start = text.begin(); start != text.end();) {
        const auto end = std::find_if(start, text.end(), separates);
        if (end != start) {
            result.append(QString(start, std::distance(start, end)));
        }
        start = end == text.end() ? end : std::next(end);
    }
    return result;
}

// Text editors take some characters for the ends of blocks, and one for a picture. Laying out a
// very long line would block the window.
bool survivesEditor(const std::string& text) {
    constexpr std::size_t longest = 10'000;
    if (text.size() > longest) {
        return false;
    }
    const QString whole = qtText(text);
    return std::none_of(whole.begin(), whole.end(), [](QChar each) {
        const char16_t unit = each.unicode();
        return unit == 0 || unit == 0xFDD0 || unit == 0xFDD1 || unit == 0xFFFC;
    });
}

bool isUnseen(char16_t unit) {
    switch (QChar(unit).category()) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

QString inQuotes(const QString& word) {
    QString result = QStringLiteral("\"");
    for (const QChar each : word) {
        const char16_t unit = each.unicode();
        if (unit == u'"' || unit == u'\\') {
            result += QLatin1Char('\\') + each;
        } else if (unit == u'\n' || unit == u'\r' || unit == u'\t') {
            result += QLatin1Char('\\');
            result += QLatin1Char(unit == u'\n' ? 'n' : unit == u'\r' ? 'r' : 't');
        } else if (isUnseen(unit)) {
            result += QStringLiteral("\\u%1").arg(unit, 4, 16, QLatin1Char('0'));
        } else {
            result += each;
        }
    }
    return result + QLatin1Char('"');
}

bool needsQuotes(const QString& word) {
    return word.isEmpty() || std::any_of(word.begin(), word.end(), [](QChar each) {
               return each.isSpace() || each == u'"' || isUnseen(each.unicode());
           });
}

// Reads a line from its beginning.
class QuotedLine {
public:
    explicit QuotedLine(const QString& line) : line_(line) {}

    std::optional<std::vector<std::string>> words() {
        for (; at_ < line_.size(); ++at_) {
            const QChar each = line_[at_];
            if (each == u'"') {
                quoted_ = !quoted_;
                inWord_ = true;
            } else if (!quoted_ && each.isSpace()) {
                endWord();
            } else {
                inWord_ = true;
                word_ += quoted_ && each == u'\\' ? escaped() : each;
            }
        }
        endWord();
        return quoted_ ? std::nullopt : std::optional(words_);
    }

private:
    // Ends at the last character of the sequence. A backslash that begins no sequence is itself.
    QChar escaped() {
        const QChar next = at_ + 1 < line_.size() ? line_[at_ + 1] : QChar(u' ');
        constexpr int digits = 4;
        bool isNumber = false;
        const ushort code = line_.mid(at_ + 2, digits).toUShort(&isNumber, 16);
        if (next == u'u' && isNumber && at_ + 2 + digits <= line_.size()) {
            at_ += 1 + digits;
            return QChar(code);
        }
        const qsizetype plain = QStringView(u"\"\\nrt").indexOf(next);
        if (plain < 0) {
            return u'\\';
        }
        ++at_;
        return QStringView(u"\"\\\n\r\t").at(plain);
    }

    void endWord() {
        if (inWord_) {
            words_.push_back(word_.toStdString());
        }
        word_.clear();
        inWord_ = false;
    }

    const QString& line_;
    qsizetype at_ = 0;
    bool quoted_ = false;
    bool inWord_ = false;
    QString word_{};
    std::vector<std::string> words_{};
};

} // namespace

std::map<std::string, std::string> parseKeyValues(std::string_view text) {
    std::map<std::string, std::string> result;
    for (const QString& line : pieces(qtText(text), isNewline)) {
        const std::string entry = line.toStdString();
        const std::size_t equals = entry.find('=');
        if (equals == std::string::npos) {
            continue;
        }
        std::string key = Text::trimmingWhitespace(std::string_view(entry).substr(0, equals));
        if (!key.empty()) {
            result[std::move(key)] = entry.substr(equals + 1);
        }
    }
    return result;
}

std::string keyValueText(const std::map<std::string, std::string>& entries) {
    std::string text;
    for (const auto& [key, value] : entries) {
        constexpr std::size_t most = 200'000;
        const std::string line = keyValueLine(key, value);
        if (survivesEditor(line) && text.size() + line.size() < most &&
            parseKeyValues(line) == std::map<std::string, std::string>{{key, value}}) {
            text.append(text.empty() ? "" : "\n").append(line);
        }
    }
    return text;
}

std::vector<std::string> splitIntoWords(std::string_view text) {
    std::vector<std::string> words;
    for (const QString& word :
         pieces(qtText(text), [](QChar character) { return character.isSpace(); })) {
        words.push_back(word.toStdString());
    }
    return words;
}

std::optional<std::vector<std::string>> splitOutsideQuotes(std::string_view text) {
    const QString line = qtText(text);
    return QuotedLine(line).words();
}

std::string quotedWords(const std::vector<std::string>& words) {
    QStringList result;
    for (const std::string& each : words) {
        const QString word = qtText(each);
        result.append(needsQuotes(word) ? inQuotes(word) : word);
    }
    return result.join(QLatin1Char(' ')).toStdString();
}

} // namespace quorvel
