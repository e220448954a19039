#pragma once

#include "WebHost/Pages/ShownAddress.h"
#include "WebHost/Questions/PasswordQuestions.h"

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <functional>
#include <memory>
#include <string>

namespace quorvel {

/// Asks the user for the passwords that servers want. They are kept by the engine until it ends,
/// and nowhere else.
class PagePasswords {
public:
    /// `refused` is called whenever the user refuses.
    PagePasswords(WebKitWebView* view, GtkWindow* window, const ShownAddress& shown,
                  std::function<void()> refused);
    PagePasswords(const PagePasswords&) = delete;
    PagePasswords& operator=(const PagePasswords&) = delete;
    ~PagePasswords();

    /// The user may be asked again.
    void reset() { questions_->reset(); }

private:
    static gboolean wanted(WebKitWebView* view, WebKitAuthenticationRequest* request,
                           gpointer self);
    static void responded(GtkDialog* dialog, int response, gpointer self);

    void show(const PasswordText& text, PasswordQuestions::Answered answered);
    void closeDialog();
    void addFields(GtkMessageDialog* dialog);
    [[nodiscard]] PasswordAsker askerOf(WebKitAuthenticationRequest* request) const;

    WebKitWebView* view_;
    GtkWindow* window_;
    const ShownAddress& shown_;
    std::function<void()> refused_;
    std::shared_ptr<PasswordQuestions> questions_; ///< requests may outlive this object
    GtkWidget* dialog_ = nullptr;                  ///< the one that is shown
    GtkWidget* user_ = nullptr;                    ///< its fields
    GtkWidget* password_ = nullptr;
    PasswordQuestions::Answered answered_{};
};

} // namespace quorvel
