#include "CommandLine/IconCommand.h"

#include "CommandLine/CloneTexts.h"
#include "CommandLine/PathWords.h"
#include "LaunchKit/IconComposer.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <ostream>

namespace quorvel {
namespace {

nlohmann::json jsonForm(const std::vector<IcnsEntry>& entries) {
    nlohmann::json list = nlohmann::json::array();
    for (const IcnsEntry& entry : entries) {
        list.push_back({{"type", entry.type},
                        {"encoding", rawString(entry.encoding)},
                        {"width", entry.width},
                        {"height", entry.height}});
    }
    return list;
}

void listIcon(const CommandContext& context, const std::filesystem::path& source, bool json) {
    const auto file = IcnsFile::read(source);
    if (!file) {
        throw CommandError("Not an icon container (.icns): " + source.string());
    }
    context.output << (json ? document(jsonForm(file->entries())) : listing(file->entries()));
}

void composeIcon(const CommandContext& context, const IconOptions& options, bool json) {
    if (options.label.empty() || options.output.empty()) {
        throw UsageError("An icon needs --label TEXT and --output FILE, or --list.");
    }
    const std::filesystem::path output = absoluteFile(options.output);
    IconComposer::compose(absoluteFile(options.source),
                          {options.label, options.color, options.position}, output);
    context.output << (json ? document({{"icon", output.string()}})
                            : shownPath(context, output) + "\n");
}

} // namespace

std::string listing(const std::vector<IcnsEntry>& entries) {
    constexpr std::size_t encodingWidth = 10;
    std::string text;
    for (const IcnsEntry& entry : entries) {
        std::string encoding(rawString(entry.encoding));
        encoding.resize(encodingWidth, ' ');
        text += entry.type + "  " + encoding + std::to_string(entry.width) + " x " +
                std::to_string(entry.height) + "\n";
    }
    return text;
}

void iconCommand(const CommandContext& context, const IconOptions& options, bool json) {
    if (options.list) {
        listIcon(context, absoluteFile(options.source), json);
    } else {
        composeIcon(context, options, json);
    }
}

} // namespace quorvel
