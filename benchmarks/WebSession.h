#pragma once

#include "Platform/processes/ProcessFamily.h"
#include "benchmarks/Screen.h"
#include "tests/EndToEnd/UserSession.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace quorvel::benchmarks {

/// A web clone of the benchmark's own site, and the programs that it is compared with, in the
/// session of an ordinary user. One of them runs at a time. Throws if something takes too long;
/// everything ends with this object.
class WebSession {
public:
    WebSession();

    /// Return the commands that show the site's colored page.
    [[nodiscard]] std::vector<std::string> clone() const;
    [[nodiscard]] std::vector<std::string> bare() const;
    [[nodiscard]] std::vector<std::string> chromium() const;

    /// Returns the seconds from the start of the program until its page is on the screen.
    double show(const std::vector<std::string>& command);
    /// Runs a program that ends by itself with status 0. Returns the seconds that it took.
    double run(const std::vector<std::string>& command);
    /// Sends a signal to the program alone. Returns the seconds until all its processes are gone,
    /// which are killed if that takes too long.
    double end(int signal);
    /// Returns the seconds from the end of the page's process until the page is there again.
    double crash();
    /// Has the clone show a page that opens a thousand of anything.
    void flood();

    /// Returns the memory of all its processes in MiB, each shared page counted once.
    [[nodiscard]] double memory() const;

private:
    [[nodiscard]] std::string address(const std::string& page) const;
    [[nodiscard]] std::filesystem::path requests() const { return session_.home / "requests"; }
    [[nodiscard]] std::size_t countOf(const std::string& request) const;
    /// Returns the running processes of the program that is shown.
    [[nodiscard]] std::vector<ProcessIdentity> processes() const;

    testing::UserSession session_{};
    Screen screen_;
    ProcessIdentity shown_{};
};

} // namespace quorvel::benchmarks
