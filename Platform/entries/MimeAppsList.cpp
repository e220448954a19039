#include "Platform/entries/MimeAppsList.h"

#include "Base/AsciiCase.h"
#include "Base/SplitText.h"

#include <algorithm>

namespace quorvel {
namespace {

constexpr std::string_view defaultsHeader = "[Default Applications]";
constexpr std::string_view blanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    const std::size_t start = text.find_first_not_of(blanks);
    return start == std::string_view::npos
               ? std::string_view()
               : text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

// One line of the list, with its line break.
struct Line {
    std::string_view text{};
    std::string_view key{};   ///< of an entry among the default applications, else empty
    std::string_view value{}; ///< of such an entry
    bool isDefaultsHeader = false;
};

std::vector<Line> linesOf(std::string_view list) {
    std::vector<Line> lines;
    bool inDefaults = false;
    while (!list.empty()) {
        Line line{list.substr(0, std::min(list.find('\n'), list.size() - 1) + 1)};
        list.remove_prefix(line.text.size());
        const std::string_view content = trimmed(line.text);
        const std::size_t equals = content.find('=');
        if (content.starts_with('[')) {
            inDefaults = content == defaultsHeader;
            line.isDefaultsHeader = inDefaults;
        } else if (inDefaults && equals != std::string_view::npos) {
            line.key = trimmed(content.substr(0, equals));
            line.value = trimmed(content.substr(equals + 1));
        }
        lines.push_back(line);
    }
    return lines;
}

// Each of a value's ids once, in their order.
void addIds(std::string_view value, std::vector<std::string>& ids) {
    while (!value.empty()) {
        const std::string_view id = trimmed(takePart(value, ';'));
        if (!id.empty() && std::find(ids.begin(), ids.end(), id) == ids.end()) {
            ids.emplace_back(id);
        }
    }
}

std::vector<std::string> handlersIn(const std::vector<Line>& lines, std::string_view mimeType) {
    std::vector<std::string> ids;
    for (const Line& line : lines) {
        if (line.key == mimeType) {
            addIds(line.value, ids);
        }
    }
    return ids;
}

std::string entryLine(std::string_view mimeType, const std::vector<std::string>& ids) {
    std::string line = std::string(mimeType).append("=");
    for (const std::string& id : ids) {
        line.append(id).append(";");
    }
    return line.append("\n");
}

void endLine(std::string& text) {
    if (!text.empty() && !text.ends_with('\n')) {
        text += '\n';
    }
}

} // namespace

std::vector<std::string> mimeAppsListNames(std::string_view currentDesktops) {
    std::vector<std::string> names;
    while (!currentDesktops.empty()) {
        std::string desktop = asciiLower(takePart(currentDesktops, ':'));
        if (!desktop.empty() && desktop.find('/') == std::string::npos) {
            names.push_back(desktop.append("-").append(commonMimeAppsList));
        }
    }
    names.emplace_back(commonMimeAppsList);
    return names;
}

std::vector<std::string> defaultHandlersIn(std::string_view list, std::string_view mimeType) {
    return handlersIn(linesOf(list), mimeType);
}

std::string preferringHandler(std::string_view list, std::span<const std::string> mimeTypes,
                              std::string_view id) {
    const std::vector<Line> lines = linesOf(list);
    std::string ours;
    for (const std::string& type : mimeTypes) {
        std::vector<std::string> ids{std::string(id)};
        for (const std::string& other : handlersIn(lines, type)) {
            addIds(other, ids);
        }
        ours += entryLine(type, ids);
    }
    std::string text;
    bool isPlaced = false;
    for (const Line& line : lines) {
        if (std::find(mimeTypes.begin(), mimeTypes.end(), line.key) != mimeTypes.end()) {
            continue;
        }
        text += line.text;
        if (line.isDefaultsHeader && !isPlaced) {
            endLine(text);
            text += ours;
            isPlaced = true;
        }
    }
    if (!isPlaced) {
        endLine(text);
        text.append(text.empty() ? "" : "\n").append(defaultsHeader).append("\n").append(ours);
    }
    return text;
}

std::string withoutHandler(std::string_view list, std::string_view id) {
    std::string text;
    for (const Line& line : linesOf(list)) {
        std::vector<std::string> ids;
        addIds(line.value, ids);
        if (std::erase(ids, id) == 0) {
            text += line.text;
        } else if (!ids.empty()) {
            text += entryLine(line.key, ids);
        }
    }
    return text;
}

} // namespace quorvel
