// Feeds a desktop entry through everything that reads one, and its command, and a script that it
// may start.
#include "Platform/entries/DesktopEntry.h"
#include "Platform/entries/ExecLine.h"
#include "Platform/programs/LauncherScript.h"

#include <cstdint>
#include <cstdlib>
#include <optional>

namespace {

using namespace quorvel;

void readCommand(std::string_view exec) {
    ExecLine line;
    try {
        line = ExecLine::parse(exec);
    } catch (const ExecLineError&) {
        return;
    }
    (void)line.takesSeveral();
    const ExecLine::Fields fields{"icon", "name %U", "/file"};
    std::vector<std::string> command = line.toArguments({"/a b", "https://example.org"}, fields);
    (void)line.engineArgumentsIndex(command);
    command.insert(command.begin(), line.program);
    std::string text;
    try {
        text = ExecLine::text(command);
    } catch (const ExecLineError&) {
        return; // a line break, a NUL byte, an equals sign
    }
    const ExecLine again = ExecLine::parse(text);
    std::vector<std::string> words = again.toArguments({}, {});
    words.insert(words.begin(), again.program);
    if (words != command) {
        std::abort();
    }
}

void readEntry(std::string_view text) {
    std::optional<DesktopEntry> entry;
    try {
        entry = parseDesktopEntry(text, {"de_AT", "de"});
    } catch (const DesktopEntryError&) {
        return;
    }
    readCommand(entry->exec);
    for (const DesktopAction& action : entry->actions) {
        readCommand(action.exec);
    }
    try {
        if (parseDesktopEntry(desktopEntryText(*entry), {"de"}) != *entry) {
            std::abort();
        }
    } catch (const DesktopEntryError&) {
        // Not every value that can be read can be written.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    readEntry(bytes);
    readCommand(bytes);
    (void)LauncherScript::parse(bytes).mentionsJava();
    return 0;
}
