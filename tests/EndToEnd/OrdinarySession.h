#pragma once

#include "Platform/processes/Process.h"
#include "tests/Packaging/Commands.h"
#include "tests/support/TemporaryHome.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quorvel::testing {

struct SessionProcess {
    pid_t parent = 0;
    std::string home{};       ///< with which it was started; empty if it has overwritten that
    std::string executable{}; ///< empty if that is not to be seen
};

/// A window that the window manager manages.
struct SessionWindow {
    pid_t process = 0; ///< 0 if it does not say
    std::string instance{};
    std::string className{};
    std::string title{};
    std::string desktopFile{}; ///< what KDE asks for before the class
    bool isDialog = false;
    bool isSecondary = false; ///< a splash screen, or a window that belongs to another
};

/// What a file is like: two equal values mean that it was not written in between.
using FileStates = std::map<std::string, std::string>;

/// A desktop session of an ordinary user who exists only as long as this object: a home, a runtime
/// folder, an X server that asks for its cookie, a window manager and a session bus. Its processes
/// have mounts, processes and a network of their own where the kernel permits it, so that they see
/// only each other, and end with this object in any case.
class OrdinarySession {
public:
    /// Where programs keep their data.
    enum class DataFolders {
        Usual,    ///< below the home, as no variable says otherwise
        Elsewhere ///< where the four XDG_*_HOME variables say, beside the home
    };

    /// Returns why this machine can't have such a session; `std::nullopt` if it can.
    [[nodiscard]] static std::optional<std::string> obstacle();

    /// Throws `std::runtime_error` if something does not come up.
    explicit OrdinarySession(DataFolders dataFolders);
    OrdinarySession(const OrdinarySession&) = delete;
    OrdinarySession& operator=(const OrdinarySession&) = delete;
    ~OrdinarySession();

    /// Where files for the session can be put, which are not the user's own.
    [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }
    [[nodiscard]] std::filesystem::path home() const { return folder_ / "user/home"; }
    /// Where programs of the user keep their data.
    [[nodiscard]] std::filesystem::path dataHome() const;

    /// Sets a variable for the programs that are run or started from now on.
    void set(const std::string& variable, const std::string& value);
    /// Runs a program to its end, which must come within two minutes.
    [[nodiscard]] Outcome run(std::vector<std::string> command) const;
    /// Starts a program.
    void start(std::vector<std::string> command);

    /// The processes of the user, apart from those that this question takes.
    [[nodiscard]] std::map<pid_t, SessionProcess> processes() const;
    [[nodiscard]] std::vector<SessionWindow> windows() const;

    /// The user's files, in the home and beside it.
    [[nodiscard]] FileStates userFiles() const;
    /// The user's files in the folders that all users share.
    [[nodiscard]] std::set<std::string> sharedFiles() const;

private:
    [[nodiscard]] bool hasProcesses() const;
    void end();
    void makeNamespaces();
    void addCookie(const std::filesystem::path& authority, const std::string& display) const;
    void startServer(const std::filesystem::path& usersAuthority);
    void startBus();
    void startWindowManager();
    [[nodiscard]] std::vector<std::string> inside(std::vector<std::string> command) const;
    Process launch(std::vector<std::string> command,
                   Process::Output output = Process::Discard{}) const;

    TemporaryFolder folder_;
    std::string user_; ///< its number
    Environment environment_{};
    std::optional<Process> namespaces_{};
    std::string firstProcess_{}; ///< of the namespaces; empty without
    std::vector<Process> programs_{};
};

} // namespace quorvel::testing
