#pragma once

#include "LaunchKit/Records/EnumNames.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

/// Binds the options of a command to the values that they set.
namespace quorvel {

/// Adds an option that may be repeated and takes exactly one value each time, even one that looks
/// like an option. The values are appended to `values`.
void addRepeatable(CLI::App& command, const std::string& name, const std::string& help,
                   const std::string& placeholder, std::vector<std::string>& values);

/// Adds an option that names a file, which is made absolute. An empty value is a `UsageError`.
void addFile(CLI::App& command, const std::string& name, const std::string& help,
             std::optional<std::filesystem::path>& file);

/// Sets an entry from the text "KEY=VALUE" that was given to `option`, in place of one of the same
/// key. Throws `UsageError` for a text without a key.
void setPair(std::map<std::string, std::string>& pairs, const std::string& text,
             const std::string& option);

/// Adds an option that takes one of `names`; `help` is followed by them: "HELP: a, b or c".
void addChoice(CLI::App& command, const std::string& name, const std::string& help,
               const std::string& placeholder, const std::vector<std::string>& names,
               const std::function<void(const std::string&)>& take);

/// Adds an option for an enumeration, by the names of its cases.
template<NamedEnum Case>
void addChoice(CLI::App& command, const std::string& name, const std::string& help,
               const std::string& placeholder, Case& value) {
    addChoice(command, name, help, placeholder, {enumNames<Case>.begin(), enumNames<Case>.end()},
              [&value](const std::string& text) {
                  value = caseNamed<Case>(text).value_or(value); // others were refused before
              });
}

} // namespace quorvel
