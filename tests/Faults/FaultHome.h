#pragma once

#include "tests/CommandLine/CommandLineHarness.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::testing {

/// Text that a killed process leaves behind without a system call.
class SharedText {
public:
    SharedText();
    SharedText(const SharedText&) = delete;
    SharedText& operator=(const SharedText&) = delete;
    ~SharedText();

    void set(const std::string& text);
    [[nodiscard]] std::string get() const { return text_; }

private:
    static constexpr std::size_t size = 65536;
    char* text_;
};

/// A home with the clone "Work", another one, an application with data, and what is somebody
/// else's. It can be restored as often as needed.
class FaultHome {
public:
    using Words = std::vector<std::string>;
    using Tree = std::map<std::string, std::string>;

    FaultHome();

    [[nodiscard]] std::filesystem::path at(std::string_view name) const {
        return harness_.home / name;
    }
    /// The application's desktop entry.
    [[nodiscard]] std::filesystem::path application() const;

    void restore() const;

    /// Runs a command in this process, keeps its message, and returns its status.
    int perform(const Words& words);
    /// The same with a function; one that throws has failed.
    int perform(const std::function<void()>& change);
    /// Runs `change` in a process of its own: drawing starts threads, and a process with threads
    /// can't be copied. Returns its status.
    [[nodiscard]] static int apart(const std::function<int()>& change);

    /// Returns what the last change said.
    [[nodiscard]] std::string message() const { return message_.get(); }

    /// Does what the window does when it opens, two minutes later.
    void startNext() const;

    /// Returns everything but the menu, which is compared by what it shows.
    [[nodiscard]] Tree clones() const;
    /// Returns the files of the menu.
    [[nodiscard]] Tree menu() const;

    /// Returns how somebody else's things were touched; empty if they were not.
    [[nodiscard]] std::string othersProblem() const;
    /// Returns how the menu doesn't show the clones that there are and what else was in it; empty
    /// if it does.
    [[nodiscard]] std::string menuProblem() const;

    /// Returns the first difference.
    [[nodiscard]] static std::string difference(const Tree& wanted, const Tree& now);

private:
    [[nodiscard]] std::string pictureProblem() const;

    CommandLineHarness harness_{};
    TemporaryFolder saved_{};
    SharedText message_{};
};

} // namespace quorvel::testing
