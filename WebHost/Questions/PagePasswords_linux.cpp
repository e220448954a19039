#include "WebHost/Questions/PagePasswords_linux.h"

#include "WebHost/GtkTypes_linux.h"
#include "WebHost/Links/WebAddress.h"

#include <memory>
#include <utility>

namespace quorvel {
namespace {

PagePasswords& of(gpointer self) {
    return *static_cast<PagePasswords*>(self);
}

// Cards and certificates of the user are not offered to servers.
bool isForPassword(WebKitAuthenticationRequest* request) {
    switch (webkit_authentication_request_get_scheme(request)) {
    case WEBKIT_AUTHENTICATION_SCHEME_DEFAULT:
    case WEBKIT_AUTHENTICATION_SCHEME_HTTP_BASIC:
    case WEBKIT_AUTHENTICATION_SCHEME_HTTP_DIGEST:
    case WEBKIT_AUTHENTICATION_SCHEME_NTLM:
        return true;
    default:
        return false;
    }
}

void answer(WebKitAuthenticationRequest* request, const std::optional<Login>& login) {
    if (!login) {
        webkit_authentication_request_cancel(request);
        return;
    }
    WebKitCredential* const credential = webkit_credential_new(
        login->user.c_str(), login->password.c_str(), WEBKIT_CREDENTIAL_PERSISTENCE_FOR_SESSION);
    webkit_authentication_request_authenticate(request, credential);
    webkit_credential_free(credential);
}

GtkWidget* addField(GtkWidget* area, const char* name, GtkWidget* field) {
    GtkWidget* const label = gtk_label_new_with_mnemonic(name);
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), field);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_accessible_update_relation(GTK_ACCESSIBLE(field), GTK_ACCESSIBLE_RELATION_LABELLED_BY,
                                   label, nullptr, -1);
    gtk_box_append(GTK_BOX(area), label);
    gtk_box_append(GTK_BOX(area), field);
    return field;
}

} // namespace

PagePasswords::PagePasswords(WebKitWebView* view, GtkWindow* window, const ShownAddress& shown,
                             std::function<void()> refused)
    : view_(view),
      window_(window),
      shown_(shown),
      refused_(std::move(refused)),
      questions_(std::make_shared<PasswordQuestions>(
          [this](const PasswordText& text, PasswordQuestions::Answered answered) {
              show(text, std::move(answered));
          },
          [this] { closeDialog(); })) {
    onSignal(view, "authenticate", wanted, this);
}

PagePasswords::~PagePasswords() {
    g_signal_handlers_disconnect_by_data(view_, this);
    closeDialog();
}

PasswordAsker PagePasswords::askerOf(WebKitAuthenticationRequest* request) const {
    WebKitSecurityOrigin* const origin = webkit_authentication_request_get_security_origin(request);
    const std::string scheme = textOf(webkit_security_origin_get_protocol(origin));
    webkit_security_origin_unref(origin);
    return {.host = textOf(webkit_authentication_request_get_host(request)),
            .port = webkit_authentication_request_get_port(request),
            .realm = textOf(webkit_authentication_request_get_realm(request)),
            .isProxy = webkit_authentication_request_is_for_proxy(request) == TRUE,
            .isEncrypted = scheme == "https",
            .pageHost = hostOf(shown_.text())};
}

gboolean PagePasswords::wanted(WebKitWebView* /*view*/, WebKitAuthenticationRequest* request,
                               gpointer self) {
    PagePasswords& passwords = of(self);
    if (!isForPassword(request)) {
        webkit_authentication_request_cancel(request);
        return TRUE;
    }
    const PasswordAsker asker = passwords.askerOf(request);
    const std::shared_ptr<WebKitAuthenticationRequest> kept = keep(request);
    const std::weak_ptr questions(passwords.questions_);
    onEvent(request, "authenticated", [questions, asker] {
        if (const auto known = questions.lock()) {
            known->accepted(asker);
        }
    });
    const std::size_t number = passwords.questions_->decide(
        asker, webkit_authentication_request_is_retry(request) == TRUE,
        [kept](const std::optional<Login>& login) { answer(kept.get(), login); });
    // Of what the engine takes back, nobody wants an answer any more.
    onEvent(request, "cancelled", [questions, number] {
        if (const auto known = questions.lock()) {
            known->withdraw(number);
        }
    });
    return TRUE;
}

void PagePasswords::show(const PasswordText& text, PasswordQuestions::Answered answered) {
    answered_ = std::move(answered);
    GtkWidget* const dialog = gtk_message_dialog_new(
        window_, static_cast<GtkDialogFlags>(GTK_DIALOG_MODAL | GTK_DIALOG_DESTROY_WITH_PARENT),
        GTK_MESSAGE_OTHER, GTK_BUTTONS_NONE, "%s", text.heading.c_str());
    gtk_window_set_title(GTK_WINDOW(dialog), text.heading.c_str());
    gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog), "%s", text.text.c_str());
    addFields(GTK_MESSAGE_DIALOG(dialog));
    gtk_dialog_add_button(GTK_DIALOG(dialog), "_Cancel", GTK_RESPONSE_CANCEL);
    gtk_dialog_add_button(GTK_DIALOG(dialog), "_Log In", GTK_RESPONSE_OK);
    gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_OK);
    onSignal(dialog, "response", responded, this);
    g_set_weak_pointer(&dialog_, dialog);
    gtk_window_present(GTK_WINDOW(dialog));
    gtk_widget_grab_focus(user_);
}

void PagePasswords::addFields(GtkMessageDialog* dialog) {
    GtkWidget* const area = gtk_message_dialog_get_message_area(dialog);
    user_ = addField(area, "_User name", gtk_entry_new());
    password_ = addField(area, "_Password", gtk_password_entry_new());
    gtk_password_entry_set_show_peek_icon(GTK_PASSWORD_ENTRY(password_), TRUE);
    for (GtkWidget* each : {user_, password_}) {
        g_object_set(each, "activates-default", TRUE, nullptr);
    }
}

void PagePasswords::closeDialog() {
    answered_ = {};
    if (GtkWidget* const dialog = dialog_) {
        g_clear_weak_pointer(&dialog_);
        gtk_window_destroy(GTK_WINDOW(dialog));
    }
}

void PagePasswords::responded(GtkDialog* /*dialog*/, int response, gpointer self) {
    PagePasswords& passwords = of(self);
    std::optional<Login> login;
    if (response == GTK_RESPONSE_OK) {
        login = Login{gtk_editable_get_text(GTK_EDITABLE(passwords.user_)),
                      gtk_editable_get_text(GTK_EDITABLE(passwords.password_))};
    } else {
        passwords.refused_();
    }
    const auto answered = std::exchange(passwords.answered_, {});
    passwords.closeDialog();
    answered(login);
}

} // namespace quorvel
