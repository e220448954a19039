#pragma once

#include "Platform/processes/Process.h"
#include "tests/support/TemporaryHome.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace quorvel::testing {

/// A desktop session of an ordinary user ("nobody", if this process is root's) on an invisible
/// screen: a home, a runtime folder, an X server and a session bus of its own. Everything that runs
/// in it ends with this object.
class UserSession {
public:
    /// Returns the programs it needs that are not installed.
    [[nodiscard]] static std::vector<std::string> missingPrograms();

    /// Throws if something does not come up.
    UserSession();
    UserSession(const UserSession&) = delete;
    UserSession& operator=(const UserSession&) = delete;
    ~UserSession();

    /// Starts a program in the session, with its output in the session's log. Files that it needs
    /// must be readable for everyone, or made by `write`.
    [[nodiscard]] Process start(const std::vector<std::string>& command,
                                const Environment& more = {}) const;
    /// Runs a program and returns its exit status. Throws if it takes longer than two minutes, and
    /// says what runs then.
    int run(const std::vector<std::string>& command, const Environment& more = {}) const;
    /// Runs a program and returns its standard output.
    [[nodiscard]] std::string outputOf(const std::vector<std::string>& command) const;

    /// Writes a file that belongs to the user, with its missing folders.
    void write(const std::filesystem::path& file, std::string_view text) const;
    void writeProgram(const std::filesystem::path& file, std::string_view script) const;

    /// Returns the processes of the session's programs whose environment contains this entry
    /// ("NAME=value").
    [[nodiscard]] std::vector<pid_t> processesWith(const std::string& entry) const;

    [[nodiscard]] std::string log() const { return read(folder_ / "log"); }

    const std::filesystem::path& folder() const { return folder_.path(); }
    std::filesystem::path home{};
    Environment environment{};

private:
    [[nodiscard]] Process::Options optionsFor(const std::vector<std::string>& command,
                                              const Environment& more) const;
    void giveToUser(const std::filesystem::path& item) const;
    void end() const;

    TemporaryFolder folder_;
};

} // namespace quorvel::testing
