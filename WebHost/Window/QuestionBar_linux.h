#pragma once

#include "WebHost/Questions/HostQuestion.h"

#include <gtk/gtk.h>

#include <deque>
#include <optional>

namespace quorvel {

/// Shows one question after the other.
class QuestionBar {
public:
    QuestionBar();
    QuestionBar(const QuestionBar&) = delete;
    QuestionBar& operator=(const QuestionBar&) = delete;
    ~QuestionBar();

    [[nodiscard]] GtkWidget* widget() const { return bar_; }
    /// Asks after the questions that already wait, or at once if it is urgent. Returns false if too
    /// many wait and it is not urgent.
    [[nodiscard]] bool ask(HostQuestion question);

private:
    void showFirst();
    void answer(std::optional<bool> yes);
    void delayButtons();

    GtkWidget* bar_;
    GtkWidget* text_;
    GtkWidget* yes_;
    GtkWidget* no_;
    std::deque<HostQuestion> questions_{};
    guint delay_ = 0; ///< until the buttons work
};

/// Offers something about the page that is shown, with one button.
class OfferBar {
public:
    OfferBar();
    OfferBar(const OfferBar&) = delete;
    OfferBar& operator=(const OfferBar&) = delete;

    [[nodiscard]] GtkWidget* widget() const { return bar_; }
    /// Shows an offer, in place of another one. `chosen` is called when its button is clicked.
    void show(const std::string& text, const std::string& button, std::function<void()> chosen);
    /// Hides the offer.
    void hide();

private:
    GtkWidget* bar_;
    GtkWidget* text_;
    GtkWidget* button_;
    std::function<void()> chosen_{};
};

/// Returns a bar for such texts, hidden, with a label that `label` is set to.
[[nodiscard]] GtkWidget* newHostBar(GtkWidget*& label);

} // namespace quorvel
