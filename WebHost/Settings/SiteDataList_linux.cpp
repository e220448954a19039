#include "WebHost/Settings/SiteDataList_linux.h"

#include "Base/TerminalText.h"
#include "WebHost/Settings/SettingsEditor.h"
#include "WebHost/Settings/SettingsRows_linux.h"

#include <memory>
#include <utility>

namespace quorvel {
namespace {

SiteDataList& of(gpointer self) {
    return *static_cast<SiteDataList*>(self);
}

struct DataReleaser {
    void operator()(WebKitWebsiteData* data) const { webkit_website_data_unref(data); }
};
struct ErrorReleaser {
    void operator()(GError* error) const { g_error_free(error); }
};
using ErrorPointer = std::unique_ptr<GError, ErrorReleaser>;

// Only the destructor of the list cancels.
bool isCancelled(GError* error) {
    return g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED) == TRUE;
}

} // namespace

SiteDataList::SiteDataList(WebKitNetworkSession* session, std::string cloneName,
                           std::function<void()> cleared)
    : manager_(webkit_network_session_get_website_data_manager(session)),
      name_(std::move(cloneName)),
      cleared_(std::move(cleared)),
      section_(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0)) {
    GtkWidget* const section = addSection(section_, "Data");
    addHint(section, SettingsText::data);
    list_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
    gtk_box_append(GTK_BOX(section), list_);
    state_ = addHint(section, "");
    GtkWidget* const clear = gtk_button_new_with_mnemonic("Clear All _Data…");
    gtk_widget_set_halign(clear, GTK_ALIGN_END);
    onEvent(clear, "clicked", [this] { confirm(); });
    gtk_box_append(GTK_BOX(section), clear);
}

SiteDataList::~SiteDataList() {
    g_cancellable_cancel(cancellable_.get());
}

void SiteDataList::refresh() {
    webkit_website_data_manager_fetch(manager_, WEBKIT_WEBSITE_DATA_ALL, cancellable_.get(), found,
                                      this);
}

void SiteDataList::found(GObject* manager, GAsyncResult* result, gpointer self) {
    GError* failure = nullptr;
    GList* const sites = webkit_website_data_manager_fetch_finish(
        WEBKIT_WEBSITE_DATA_MANAGER(manager), result, &failure);
    const ErrorPointer error(failure);
    if (isCancelled(error.get())) {
        return;
    }
    std::vector<RemovableRow> rows;
    for (GList* each = sites; each != nullptr; each = each->next) {
        auto* const data = static_cast<WebKitWebsiteData*>(each->data);
        const std::shared_ptr<WebKitWebsiteData> kept(webkit_website_data_ref(data),
                                                      DataReleaser());
        const std::string site = withoutUnsafe(textOf(webkit_website_data_get_name(data)));
        rows.push_back(
            {site, "Remove the data of " + site, [self, kept] { of(self).remove(kept.get()); }});
    }
    g_list_free_full(sites, [](gpointer data) {
        webkit_website_data_unref(static_cast<WebKitWebsiteData*>(data));
    });
    fillList(of(self).list_, rows, SettingsText::noData);
}

void SiteDataList::remove(WebKitWebsiteData* data) {
    GList one{data, nullptr, nullptr};
    webkit_website_data_manager_remove(manager_, webkit_website_data_get_types(data), &one,
                                       cancellable_.get(), removed, this);
}

void SiteDataList::removed(GObject* manager, GAsyncResult* result, gpointer self) {
    GError* failure = nullptr;
    const bool isDone = webkit_website_data_manager_remove_finish(
                            WEBKIT_WEBSITE_DATA_MANAGER(manager), result, &failure) == TRUE;
    const ErrorPointer error(failure);
    if (!isCancelled(error.get())) {
        of(self).report(isDone, error.get());
    }
}

void SiteDataList::allCleared(GObject* manager, GAsyncResult* result, gpointer self) {
    GError* failure = nullptr;
    const bool isDone = webkit_website_data_manager_clear_finish(
                            WEBKIT_WEBSITE_DATA_MANAGER(manager), result, &failure) == TRUE;
    const ErrorPointer error(failure);
    if (!isCancelled(error.get())) {
        of(self).report(isDone, error.get());
    }
}

void SiteDataList::report(bool isDone, GError* error) {
    gtk_label_set_text(GTK_LABEL(state_),
                       isDone ? SettingsText::dataCleared
                              : ("The data can’t be cleared: " +
                                 textOf(error == nullptr ? nullptr : error->message))
                                    .c_str());
    if (isDone) {
        cleared_();
    }
    refresh();
}

void SiteDataList::confirm() {
    GtkRoot* const root = gtk_widget_get_root(section_);
    GtkWidget* const dialog = gtk_message_dialog_new(
        GTK_WINDOW(root),
        static_cast<GtkDialogFlags>(GTK_DIALOG_MODAL | GTK_DIALOG_DESTROY_WITH_PARENT),
        GTK_MESSAGE_WARNING, GTK_BUTTONS_NONE, "%s", SettingsText::clearsData(name_).c_str());
    gtk_window_set_title(GTK_WINDOW(dialog), "Clear all data?");
    gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog), "%s",
                                             SettingsText::clearing);
    gtk_dialog_add_button(GTK_DIALOG(dialog), "_Keep", GTK_RESPONSE_CANCEL);
    gtk_dialog_add_button(GTK_DIALOG(dialog), "_Clear", GTK_RESPONSE_OK);
    gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_CANCEL);
    onSignal(
        dialog, "response",
        [](GtkDialog* widget, int response, gpointer self) {
            gtk_window_destroy(GTK_WINDOW(widget));
            if (response == GTK_RESPONSE_OK) {
                SiteDataList& list = of(self);
                webkit_website_data_manager_clear(list.manager_, WEBKIT_WEBSITE_DATA_ALL, 0,
                                                  list.cancellable_.get(), allCleared, &list);
            }
        },
        this);
    gtk_window_present(GTK_WINDOW(dialog));
}

} // namespace quorvel
