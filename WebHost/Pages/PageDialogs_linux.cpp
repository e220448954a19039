#include "WebHost/Pages/PageDialogs_linux.h"

#include "Base/TerminalText.h"
#include "WebHost/GtkTypes_linux.h"
#include "WebHost/Links/WebAddress.h"
#include "WebHost/Pages/PageText.h"

#include <memory>

namespace quorvel {
namespace {

constexpr int stopping = 1; // a response of our own

// A dialog that is shown.
struct Open {
    WebKitScriptDialog* dialog;
    GtkWidget* entry; ///< null unless a text is asked for
    DialogCap* cap;
    std::function<void(bool agreed)> answered;
};

bool isLeaving(WebKitScriptDialog* dialog) {
    return webkit_script_dialog_get_dialog_type(dialog) ==
           WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM;
}

struct PageDialogText {
    std::string heading;
    std::string text;
};

PageDialogText textFor(WebKitScriptDialog* dialog, const std::string& host) {
    if (isLeaving(dialog)) {
        return {"Leave this page?", "What you have entered may not be saved."};
    }
    return {host.empty() ? "This page says" : host + " says",
            pageText(textOf(webkit_script_dialog_get_message(dialog)), longestDialogText)};
}

// Adds the field for the text that the user is asked for.
GtkWidget* addEntry(GtkMessageDialog* widget, WebKitScriptDialog* dialog) {
    GtkWidget* const entry = gtk_entry_new();
    gtk_editable_set_text(
        GTK_EDITABLE(entry),
        withoutUnsafe(textOf(webkit_script_dialog_prompt_get_default_text(dialog)),
                      longestDialogText)
            .c_str());
    gtk_entry_set_activates_default(GTK_ENTRY(entry), TRUE);
    gtk_box_append(GTK_BOX(gtk_message_dialog_get_message_area(widget)), entry);
    return entry;
}

void answered(GtkDialog* widget, int response, gpointer data) {
    const std::unique_ptr<Open> open(static_cast<Open*>(data));
    const bool agreed = response == GTK_RESPONSE_OK;
    switch (webkit_script_dialog_get_dialog_type(open->dialog)) {
    case WEBKIT_SCRIPT_DIALOG_CONFIRM:
    case WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM:
        webkit_script_dialog_confirm_set_confirmed(open->dialog, agreed ? TRUE : FALSE);
        break;
    case WEBKIT_SCRIPT_DIALOG_PROMPT:
        if (agreed) {
            webkit_script_dialog_prompt_set_text(open->dialog,
                                                 gtk_editable_get_text(GTK_EDITABLE(open->entry)));
        }
        break;
    default:
        break;
    }
    if (response == stopping) {
        open->cap->stop();
    }
    open->answered(agreed);
    webkit_script_dialog_close(open->dialog);
    webkit_script_dialog_unref(open->dialog);
    gtk_window_destroy(GTK_WINDOW(widget));
}

} // namespace

PageDialogs::PageDialogs(WebKitWebView* view, GtkWindow* window, const ShownAddress& shown,
                         Callbacks callbacks)
    : view_(view),
      window_(window),
      shown_(shown),
      callbacks_(std::move(callbacks)) {
    onSignal(view, "script-dialog", opened, this);
}

PageDialogs::~PageDialogs() {
    g_signal_handlers_disconnect_by_data(view_, this);
}

gboolean PageDialogs::opened(WebKitWebView* /*view*/, WebKitScriptDialog* dialog, gpointer self) {
    auto& dialogs = *static_cast<PageDialogs*>(self);
    // However often a page asks, what the user has entered must not be lost.
    if (isLeaving(dialog)) {
        dialogs.callbacks_.leavingAsked();
        dialogs.show(dialog);
    } else if (dialogs.cap_.admits()) {
        dialogs.callbacks_.shown();
        dialogs.show(dialog);
    }
    return TRUE;
}

void PageDialogs::show(WebKitScriptDialog* dialog) {
    const WebKitScriptDialogType type = webkit_script_dialog_get_dialog_type(dialog);
    const PageDialogText words = textFor(dialog, hostOf(shown_.text()));
    GtkWidget* const widget = gtk_message_dialog_new(
        window_, static_cast<GtkDialogFlags>(GTK_DIALOG_MODAL | GTK_DIALOG_DESTROY_WITH_PARENT),
        GTK_MESSAGE_OTHER, GTK_BUTTONS_NONE, "%s", words.heading.c_str());
    gtk_window_set_title(GTK_WINDOW(widget), words.heading.c_str());
    gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(widget), "%s", words.text.c_str());
    if (!isLeaving(dialog) && cap_.offersToStop()) {
        gtk_dialog_add_button(GTK_DIALOG(widget), "Stop Dialogs from This Page", stopping);
    }
    if (type != WEBKIT_SCRIPT_DIALOG_ALERT) {
        gtk_dialog_add_button(GTK_DIALOG(widget), isLeaving(dialog) ? "Stay" : "Cancel",
                              GTK_RESPONSE_CANCEL);
    }
    gtk_dialog_add_button(GTK_DIALOG(widget), isLeaving(dialog) ? "Leave" : "OK", GTK_RESPONSE_OK);
    gtk_dialog_set_default_response(GTK_DIALOG(widget), GTK_RESPONSE_OK);
    GtkWidget* const entry = type == WEBKIT_SCRIPT_DIALOG_PROMPT
                                 ? addEntry(GTK_MESSAGE_DIALOG(widget), dialog)
                                 : nullptr;
    onSignal(widget, "response", answered,
             new Open{webkit_script_dialog_ref(dialog), entry, &cap_,
                      isLeaving(dialog) ? callbacks_.leavingAnswered : [](bool) {}});
    gtk_window_present(GTK_WINDOW(widget));
}

} // namespace quorvel
