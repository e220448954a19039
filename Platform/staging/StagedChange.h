#pragma once

#include "Platform/files/FileHandle.h"
#include "Platform/staging/ExclusiveRename.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorvel {

struct ItemIdentity;

/// A change of items in one folder that is prepared in a hidden folder beside them and then made by
/// renaming. Interrupted at any moment, it leaves the old item or the new one, whole, and the
/// hidden folder, which `interruptedIn` finds. The hidden folder is locked while the object exists.
/// Both folders are opened once, so that nothing swapped in meanwhile redirects the change.
class StagedChange {
public:
    using Exchange =
        std::function<int(int folder, const char* name, int otherFolder, const char* otherName)>;

    /// Makes the hidden folder, with mode 0700. If `exchange` reports that the file system does not
    /// support it, items are replaced by two renames. Throws `PlatformError`.
    explicit StagedChange(const std::filesystem::path& folder, Exchange exchange = exchangeItems);

    StagedChange(StagedChange&&) noexcept = default;
    StagedChange& operator=(StagedChange&&) = delete;
    StagedChange(const StagedChange&) = delete;
    StagedChange& operator=(const StagedChange&) = delete;

    /// Removes the hidden folder and everything in it. What can't be removed is left to
    /// `interruptedIn`.
    ~StagedChange();

    /// Returns the folder whose items are changed.
    [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }

    /// Returns the path of the hidden folder, in which new items are made.
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    /// Flushes the item `staged` of the hidden folder to disk and moves it to `name`, in place of
    /// what is there, which then is at `staged`. Throws `PlatformError`; nothing has changed then.
    void publish(const std::string& staged, const std::string& name);

    /// Moves an item of the folder into the hidden folder under the name `staged`, which must be
    /// free. Returns false, with everything in its place, if something else than `item` has that
    /// name. Throws `PlatformError`.
    [[nodiscard]] bool withdraw(const std::string& name, const std::string& staged,
                                const ItemIdentity& item);

    /// Moves an item of the hidden folder to `name`, which must be free. Throws `PlatformError`.
    void restore(const std::string& staged, const std::string& name);

    /// Renames an item of the folder. Throws `PlatformError`, also if `to` is taken.
    void rename(const std::string& from, const std::string& to);

    /// Writes a file into the hidden folder and flushes both to disk. Throws `PlatformError`.
    void note(const std::string& name, std::string_view bytes);

    /// Returns a note, or std::nullopt if there is none.
    [[nodiscard]] std::optional<std::string> noted(const std::string& name) const;

    /// Removes a note and flushes that to disk, as far as possible.
    void forget(const std::string& name) const;

    /// Returns the number by which the file system knows the item of the folder, under any name;
    /// std::nullopt if there is none.
    [[nodiscard]] std::optional<std::uint64_t> numberOf(const std::string& name) const;

    /// Returns whether the hidden folder contains an item of that name.
    [[nodiscard]] bool holds(const std::string& name) const;

    /// Leaves the hidden folder as it is, for a later attempt.
    void keep(bool isKept = true) { kept_ = isKept; }

    /// Returns the interrupted changes in a folder, locked, without those whose program still runs.
    /// An item that was between two renames is at its place again.
    [[nodiscard]] static std::vector<StagedChange>
    interruptedIn(const std::filesystem::path& folder);

    /// Returns whether a folder of this name belongs to a change.
    [[nodiscard]] static bool isHiddenFolder(std::string_view name);

private:
    struct Move {
        int from = -1;
        const std::string& name;
        int to = -1;
        const std::string& newName;
        const char* action = ""; ///< for the error, a past participle
    };

    StagedChange(std::filesystem::path folder, FileHandle parent) noexcept
        : folder_(std::move(folder)),
          parent_(std::move(parent)) {}

    [[nodiscard]] bool open(const std::string& hidden);
    [[nodiscard]] bool writeNote(const char* name, std::string_view bytes) const;
    [[nodiscard]] int moveTo(const char* staged, const char* name) const;
    [[nodiscard]] int replaceInTwoSteps(const char* staged, const char* name) const;
    void moveDurably(const Move& move) const;
    void putBackDisplaced() const;
    [[nodiscard]] bool flush() const;

    std::filesystem::path folder_;
    std::filesystem::path path_{};
    Exchange exchange_ = exchangeItems;
    FileHandle parent_; ///< perhaps for looking up names only
    FileHandle hidden_{-1};
    bool kept_ = false;
};

} // namespace quorvel
