#include "WebHost/Pages/PageMenu_linux.h"

#include "WebHost/GtkTypes_linux.h"
#include "WebHost/Links/WebAddress.h"

#include <algorithm>
#include <array>
#include <vector>

namespace quorvel {
namespace {

// None of them opens a window, leaves the clone or looks into the page. Downloads go where all do.
constexpr std::array<WebKitContextMenuAction, 29> kept{
    WEBKIT_CONTEXT_MENU_ACTION_COPY,
    WEBKIT_CONTEXT_MENU_ACTION_COPY_AUDIO_LINK_TO_CLIPBOARD,
    WEBKIT_CONTEXT_MENU_ACTION_COPY_IMAGE_TO_CLIPBOARD,
    WEBKIT_CONTEXT_MENU_ACTION_COPY_IMAGE_URL_TO_CLIPBOARD,
    WEBKIT_CONTEXT_MENU_ACTION_COPY_LINK_TO_CLIPBOARD,
    WEBKIT_CONTEXT_MENU_ACTION_COPY_VIDEO_LINK_TO_CLIPBOARD,
    WEBKIT_CONTEXT_MENU_ACTION_CUT,
    WEBKIT_CONTEXT_MENU_ACTION_DELETE,
    WEBKIT_CONTEXT_MENU_ACTION_DOWNLOAD_AUDIO_TO_DISK,
    WEBKIT_CONTEXT_MENU_ACTION_DOWNLOAD_IMAGE_TO_DISK,
    WEBKIT_CONTEXT_MENU_ACTION_DOWNLOAD_LINK_TO_DISK,
    WEBKIT_CONTEXT_MENU_ACTION_DOWNLOAD_VIDEO_TO_DISK,
    WEBKIT_CONTEXT_MENU_ACTION_GO_BACK,
    WEBKIT_CONTEXT_MENU_ACTION_GO_FORWARD,
    WEBKIT_CONTEXT_MENU_ACTION_IGNORE_SPELLING,
    WEBKIT_CONTEXT_MENU_ACTION_INSERT_EMOJI,
    WEBKIT_CONTEXT_MENU_ACTION_LEARN_SPELLING,
    WEBKIT_CONTEXT_MENU_ACTION_MEDIA_MUTE,
    WEBKIT_CONTEXT_MENU_ACTION_MEDIA_PAUSE,
    WEBKIT_CONTEXT_MENU_ACTION_MEDIA_PLAY,
    WEBKIT_CONTEXT_MENU_ACTION_NO_GUESSES_FOUND,
    WEBKIT_CONTEXT_MENU_ACTION_PASTE,
    WEBKIT_CONTEXT_MENU_ACTION_PASTE_AS_PLAIN_TEXT,
    WEBKIT_CONTEXT_MENU_ACTION_RELOAD,
    WEBKIT_CONTEXT_MENU_ACTION_SELECT_ALL,
    WEBKIT_CONTEXT_MENU_ACTION_SPELLING_GUESS,
    WEBKIT_CONTEXT_MENU_ACTION_STOP,
    WEBKIT_CONTEXT_MENU_ACTION_TOGGLE_MEDIA_CONTROLS,
    WEBKIT_CONTEXT_MENU_ACTION_TOGGLE_MEDIA_LOOP,
};

bool isKept(WebKitContextMenuItem* item) {
    return webkit_context_menu_item_is_separator(item) == TRUE ||
           std::find(kept.begin(), kept.end(), webkit_context_menu_item_get_stock_action(item)) !=
               kept.end();
}

// Removes all other items, and the separators that then separate nothing.
void reduce(WebKitContextMenu* menu) {
    bool wasSeparator = true;
    std::vector<WebKitContextMenuItem*> removed;
    WebKitContextMenuItem* last = nullptr;
    for (GList* each = webkit_context_menu_get_items(menu); each != nullptr; each = each->next) {
        auto* const item = WEBKIT_CONTEXT_MENU_ITEM(each->data);
        const bool isSeparator = webkit_context_menu_item_is_separator(item) == TRUE;
        if (!isKept(item) || (isSeparator && wasSeparator)) {
            removed.push_back(item);
        } else {
            wasSeparator = isSeparator;
            last = item;
        }
    }
    if (last != nullptr && webkit_context_menu_item_is_separator(last) == TRUE) {
        removed.push_back(last);
    }
    for (WebKitContextMenuItem* item : removed) {
        webkit_context_menu_remove(menu, item);
    }
}

} // namespace

PageMenu::PageMenu(WebKitWebView* view, std::function<void(const std::string&)> openOutside)
    : view_(view),
      openOutside_(std::move(openOutside)) {
    onSignal(view, "context-menu", opened, this);
}

PageMenu::~PageMenu() {
    g_signal_handlers_disconnect_by_data(view_, this);
}

gboolean PageMenu::opened(WebKitWebView* /*view*/, WebKitContextMenu* menu,
                          WebKitHitTestResult* target, gpointer self) {
    reduce(menu);
    const std::string link = textOf(webkit_hit_test_result_get_link_uri(target));
    if (isWebAddress(link)) {
        static_cast<PageMenu*>(self)->addLink(menu, link);
    }
    // An empty menu would be shown as such.
    return webkit_context_menu_get_n_items(menu) == 0 ? TRUE : FALSE;
}

void PageMenu::addLink(WebKitContextMenu* menu, const std::string& address) {
    GSimpleAction* const action = g_simple_action_new("open-outside", nullptr);
    onEvent(action, "activate", [open = openOutside_, address] { open(address); });
    webkit_context_menu_prepend(menu, webkit_context_menu_item_new_from_gaction(
                                          G_ACTION(action), "Open Link in Browser", nullptr));
    g_object_unref(action);
}

} // namespace quorvel
