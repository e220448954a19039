#pragma once

#include "Presentation/Translation.h"

#include <QString>

#include <initializer_list>
#include <string>
#include <string_view>

namespace quorvel {

/// Returns a text of the lower layers in the language of the application's catalogue: the
/// `Translate` of the window.
[[nodiscard]] std::string translated(const char* context, const char* text);

/// Returns a text from `tr` as UTF-8, with "%1" to "%9" filled in.
[[nodiscard]] std::string sentence(const QString& pattern,
                                   std::initializer_list<std::string_view> arguments);

} // namespace quorvel
