#include "WebHost/Window/QuestionBar_linux.h"

#include "WebHost/GtkTypes_linux.h"
#include "WebHost/Pages/FloodCaps.h"
#include "WebHost/Settings/SettingsRows_linux.h"

namespace quorvel {

GtkWidget* newHostBar(GtkWidget*& label) {
    constexpr int space = 8;
    GtkWidget* const bar = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, space);
    gtk_widget_add_css_class(bar, "toolbar");
    gtk_widget_set_visible(bar, FALSE);
    label = gtk_label_new(nullptr);
    gtk_label_set_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_widget_set_hexpand(label, TRUE);
    gtk_widget_set_margin_start(label, space);
    gtk_box_append(GTK_BOX(bar), label);
    return bar;
}

QuestionBar::QuestionBar()
    : bar_(newHostBar(text_)),
      yes_(gtk_button_new()),
      no_(gtk_button_new()) {
    GtkWidget* const close = gtk_button_new_from_icon_name("window-close-symbolic");
    gtk_widget_set_tooltip_text(close, "Decide Later");
    nameControl(close, "Decide Later");
    for (GtkWidget* each : {no_, yes_, close}) {
        gtk_box_append(GTK_BOX(bar_), each);
    }
    const auto connect = [&](GtkWidget* button, auto function) {
        onSignal(button, "clicked", function, this);
    };
    connect(yes_, [](GtkButton*, gpointer self) { static_cast<QuestionBar*>(self)->answer(true); });
    connect(no_, [](GtkButton*, gpointer self) { static_cast<QuestionBar*>(self)->answer(false); });
    connect(close, [](GtkButton*, gpointer self) {
        static_cast<QuestionBar*>(self)->answer(std::nullopt);
    });
}

QuestionBar::~QuestionBar() {
    if (delay_ != 0) {
        g_source_remove(delay_);
    }
}

bool QuestionBar::ask(HostQuestion question) {
    if (question.isUrgent) {
        questions_.push_front(std::move(question));
        showFirst();
        return true;
    }
    if (questions_.size() >= mostWaitingQuestions) {
        return false;
    }
    questions_.push_back(std::move(question));
    if (questions_.size() == 1) {
        showFirst();
    }
    return true;
}

// Otherwise the second click of two, or one that was meant for the page, would answer.
void QuestionBar::delayButtons() {
    constexpr guint milliseconds = 500;
    gtk_widget_set_sensitive(bar_, FALSE);
    if (delay_ != 0) {
        g_source_remove(delay_);
    }
    delay_ = g_timeout_add(
        milliseconds,
        [](gpointer self) -> gboolean {
            auto& bar = *static_cast<QuestionBar*>(self);
            bar.delay_ = 0;
            gtk_widget_set_sensitive(bar.bar_, TRUE);
            return G_SOURCE_REMOVE;
        },
        this);
}

void QuestionBar::showFirst() {
    const bool isThere = !questions_.empty();
    if (isThere) {
        const HostQuestion& question = questions_.front();
        gtk_label_set_text(GTK_LABEL(text_), question.text.c_str());
        gtk_button_set_label(GTK_BUTTON(yes_), question.yes.c_str());
        gtk_button_set_label(GTK_BUTTON(no_), question.no.c_str());
        delayButtons();
    }
    gtk_widget_set_visible(bar_, isThere ? TRUE : FALSE);
}

void QuestionBar::answer(std::optional<bool> yes) {
    if (questions_.empty()) {
        return;
    }
    const HostQuestion question = std::move(questions_.front());
    questions_.pop_front();
    showFirst();
    question.answered(yes);
}

OfferBar::OfferBar() : bar_(newHostBar(text_)), button_(gtk_button_new()) {
    gtk_box_append(GTK_BOX(bar_), button_);
    onSignal(
        button_, "clicked",
        [](GtkButton*, gpointer self) {
            // The call may hide the bar, which clears `chosen_`.
            if (const auto chosen = static_cast<OfferBar*>(self)->chosen_) {
                chosen();
            }
        },
        this);
}

void OfferBar::show(const std::string& text, const std::string& button,
                    std::function<void()> chosen) {
    chosen_ = std::move(chosen);
    gtk_label_set_text(GTK_LABEL(text_), text.c_str());
    gtk_button_set_label(GTK_BUTTON(button_), button.c_str());
    gtk_widget_set_visible(bar_, TRUE);
}

void OfferBar::hide() {
    chosen_ = {};
    gtk_widget_set_visible(bar_, FALSE);
}

} // namespace quorvel
