#pragma once

#include <gtk/gtk.h>

#include <deque>
#include <functional>
#include <optional>
#include <string>

namespace quorvel {

/// Something that the user is asked in a bar above the page.
struct HostQuestion {
    std::string text{};
    std::string yes{};
    std::string no{};
    /// Called once: with the answer, or with std::nullopt if the bar was closed or can't be shown.
    std::function<void(std::optional<bool>)> answered{};
};

/// Shows one question after the other.
class QuestionBar {
public:
    QuestionBar();
    QuestionBar(const QuestionBar&) = delete;
    QuestionBar& operator=(const QuestionBar&) = delete;

    [[nodiscard]] GtkWidget* widget() const { return bar_; }
    /// Asks, after the questions that wait already. If those are too many, it isn't asked.
    void ask(HostQuestion question);

private:
    void showFirst();
    void answer(std::optional<bool> yes);

    GtkWidget* bar_;
    GtkWidget* text_;
    GtkWidget* yes_;
    GtkWidget* no_;
    std::deque<HostQuestion> questions_{};
};

/// Returns a bar for such texts, hidden, with a label that `label` is set to.
[[nodiscard]] GtkWidget* newHostBar(GtkWidget*& label);

} // namespace quorvel
