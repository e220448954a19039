#include "Platform/entries/DesktopEntry.h"

namespace quorvel {
namespace {

constexpr const char* noEntries = "this system has no desktop entries";

} // namespace

std::vector<std::string> desktopEntryLanguages() {
    return {};
}

DesktopEntry parseDesktopEntry(std::string_view, const std::vector<std::string>&) {
    throw DesktopEntryError(noEntries);
}

std::string desktopEntryText(const DesktopEntry&) {
    throw DesktopEntryError(noEntries);
}

} // namespace quorvel
