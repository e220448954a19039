#pragma once

#include "tests/EndToEnd/OrdinarySession.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quorvel::testing {

/// What became of one of several copies of an application.
struct CopyReport {
    std::string home{};
    std::string runner{};                  ///< of a clone
    std::string word{};                    ///< of a clone: the StartupWMClass of its menu entry
    bool runs = false;                     ///< a process of its own, in the end
    std::optional<SessionWindow> window{}; ///< its own, of a process that runs with this home
    std::set<std::string> data{};          ///< what is in a clone's home, as relative paths

    /// Whether a desktop that compares as GNOME does finds a clone's own entry for its window.
    [[nodiscard]] bool hasOwnIdentity() const {
        return window && (window->instance == word || window->className == word);
    }
};

/// What two clones of an application and the application itself did side by side.
struct AppTrialReport {
    std::string name{}; ///< as `quorvelctl apps` lists it; empty if it does not
    CopyReport first{};
    CopyReport second{};
    CopyReport original{};
    /// The user's files that were new or changed before the original started, or after it ended and
    /// while the clones did, apart from clones.
    std::vector<std::string> writtenOutside{};
    /// New files in the folders that all users share, as long as the clones ran.
    std::vector<std::string> shared{};
    bool settingsChanged = false; ///< of the user's session, by the clones
    /// What a clone had and is still there after its deletion: files, and processes.
    std::vector<std::string> left{};
    std::string error{}; ///< of quorvelctl; nothing after it was tried
};

/// Starts two clones of an installed application, then the application itself, looks at them, and
/// deletes the clones.
class AppTrial {
public:
    /// `entry` is the identifier of a desktop entry.
    AppTrial(OrdinarySession::DataFolders dataFolders, std::string entry);

    [[nodiscard]] OrdinarySession& session() { return session_; }
    /// `arguments` are given to the application and its clones beside their own.
    [[nodiscard]] AppTrialReport run(const std::vector<std::string>& arguments = {});

private:
    Outcome quorvelctl(std::vector<std::string> arguments) const;
    /// Throws `std::runtime_error` with what it printed if it fails.
    std::string succeed(std::vector<std::string> arguments) const;
    void findApplication();
    void create(const std::string& name, CopyReport& copy) const;
    void open(const std::string& name, CopyReport& copy);
    void openOriginal();
    void awaitWindow(CopyReport& copy) const;
    void lookAround();
    void endOriginal();
    [[nodiscard]] FileStates settledFiles() const;
    void end(const std::string& name, const CopyReport& copy);
    void noteWritesSince(const FileStates& states);
    void noteLeftovers(const FileStates& before, const FileStates& created);
    [[nodiscard]] std::optional<SessionWindow> windowOf(const std::string& home) const;
    [[nodiscard]] std::string homeOf(pid_t number,
                                     const std::map<pid_t, SessionProcess>& processes) const;
    [[nodiscard]] std::string settings() const;
    [[nodiscard]] std::vector<std::string> newFiles(const FileStates& before) const;

    OrdinarySession session_;
    std::string entry_;
    std::vector<std::string> arguments_{};
    std::filesystem::path entryFile_{};
    std::string originalProgram_{}; ///< the file that runs; empty if it has no window
    AppTrialReport report_{};
};

} // namespace quorvel::testing
