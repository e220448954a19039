#include "LaunchKit/Changes/ChangeJournal.h"

#include "LaunchKit/Records/RecordReader.h"
#include "LaunchKit/Records/RecordWriter.h"
#include "Platform/files/PlatformError.h"

namespace quorvel {

template<>
struct RecordTable<ChangeJournal> {
    static constexpr std::string_view name = "journal";
    static constexpr auto fields = sortedByKey(std::array{
        Row<ChangeJournal>::required<&ChangeJournal::wrapper>("wrapper"),
        Row<ChangeJournal>::required<&ChangeJournal::newWrapper>("newWrapper"),
        Row<ChangeJournal>::required<&ChangeJournal::number>("number"),
        Row<ChangeJournal>::required<&ChangeJournal::home>("home"),
        Row<ChangeJournal>::required<&ChangeJournal::newHome>("newHome"),
        Row<ChangeJournal>::of<&ChangeJournal::device>("device"),
    });
};

namespace {

constexpr const char* journalName = "journal.json";
constexpr const char* trashName = "data-in";

} // namespace

std::optional<ChangeJournal> ChangeJournal::of(const StagedChange& change) {
    std::optional<std::string> bytes = change.noted(journalName);
    if (!bytes && change.holds(journalName)) {
        throw PlatformError::fromErrno(change.path() / journalName, "read");
    }
    std::optional<ChangeJournal> journal;
    if (bytes && !readRecord(*bytes, journal.emplace()).empty()) {
        journal.reset(); // cut off while it was written, so nothing else was done
    }
    return journal;
}

void ChangeJournal::keepWith(StagedChange& change) const {
    const auto json = writeRecord(*this);
    if (!json) {
        throw PlatformError::because("its path is not valid UTF-8", change.folder() / wrapper,
                                     "changed");
    }
    change.note(journalName, *json);
}

void ChangeJournal::forget(const StagedChange& change) {
    change.forget(journalName);
}

void ChangeJournal::noteTrash(StagedChange& change, const StagedChange& trash) {
    change.note(trashName, trash.path().filename().string());
}

std::optional<std::string> ChangeJournal::trashOf(const StagedChange& change) {
    const auto name = change.noted(trashName);
    return name && StagedChange::isHiddenFolder(*name) ? name : std::nullopt; // or cut off
}

} // namespace quorvel
