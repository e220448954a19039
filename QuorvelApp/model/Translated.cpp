#include "QuorvelApp/model/Translated.h"

#include <QCoreApplication>

namespace quorvel {

std::string translated(const char* context, const char* text) {
    return QCoreApplication::translate(context, text).toStdString();
}

std::string sentence(const QString& pattern, std::initializer_list<std::string_view> arguments) {
    return filledIn(pattern.toStdString(), arguments);
}

} // namespace quorvel
