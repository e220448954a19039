#include "CommandLine/OptionBinding.h"

#include "CommandLine/CommandContext.h"
#include "CommandLine/PathWords.h"

#include <CLI/CLI.hpp>

namespace quorvel {
namespace {

// "a, b or c".
std::string alternatives(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t index = 0; index < names.size(); ++index) {
        text.append(index == 0 ? "" : index + 1 < names.size() ? ", " : " or ");
        text.append(names[index]);
    }
    return text;
}

} // namespace

void addRepeatable(CLI::App& command, const std::string& name, const std::string& help,
                   const std::string& placeholder, std::vector<std::string>& values) {
    command
        .add_option_function<std::string>(
            name, [&values](const std::string& value) { values.push_back(value); }, help)
        ->trigger_on_parse()
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
        ->type_name(placeholder);
}

void addFile(CLI::App& command, const std::string& name, const std::string& help,
             std::optional<std::filesystem::path>& file) {
    command
        .add_option_function<std::string>(
            name,
            [&file, name](const std::string& value) {
                if (value.empty()) {
                    throw UsageError(name + " must not be empty");
                }
                file = absoluteFile(value);
            },
            help)
        ->type_name("FILE");
}

void setPair(std::map<std::string, std::string>& pairs, const std::string& text,
             const std::string& option) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
        std::string message = option;
        throw UsageError(message.append(" takes KEY=VALUE, not ").append(text));
    }
    pairs.insert_or_assign(text.substr(0, equals), text.substr(equals + 1));
}

void addChoice(CLI::App& command, const std::string& name, const std::string& help,
               const std::string& placeholder, const std::vector<std::string>& names,
               const std::function<void(const std::string&)>& take) {
    command.add_option_function<std::string>(name, take, help + ": " + alternatives(names))
        ->type_name(placeholder)
        ->check(CLI::IsMember(names).description(""));
}

} // namespace quorvel
