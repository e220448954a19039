#pragma once

#include "WebHost/Window/QuestionBar_linux.h"
#include "WebHost/Window/WindowState.h"

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <functional>
#include <span>
#include <string>

namespace quorvel {

/// One window with a page: its header, its bars and its shortcuts. Knows nothing of the clone. The
/// toolkit owns the widgets; the window is destroyed with this object.
class HostWindow {
public:
    /// What the window can't do by itself.
    struct Actions {
        std::function<void()> home{};     ///< absent in pop-ups
        std::function<void()> settings{}; ///< absent in pop-ups
        std::function<void()> quit{};
        std::function<void()> closeRequested{}; ///< by the user; the window stays
    };

    HostWindow(WebKitWebView* view, Actions actions, const WindowState& state,
               const std::string& iconName);
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;
    ~HostWindow();

    /// Shows the window.
    void show();
    /// Brings the window to the front, as far as the desktop allows it with that token.
    void present(const std::string& token);
    /// Sets the title of the window in the desktop's lists, and the page's in its header.
    void setTitle(const std::string& windowTitle, const std::string& pageTitle);
    /// Shows the host of that address, and updates the buttons for back and forward. `isExcepted`
    /// as in `shownHost`.
    void updateLocation(const std::string& address, bool isExcepted);
    /// Returns false if too many questions wait, and this one is not urgent.
    [[nodiscard]] bool ask(HostQuestion question) { return questions_.ask(std::move(question)); }
    /// Offers something about the page, until `hideOffer`.
    void showOffer(const std::string& text, const std::string& button,
                   std::function<void()> chosen) {
        offer_.show(text, button, std::move(chosen));
    }
    /// Hides what `showOffer` showed.
    void hideOffer() { offer_.hide(); }
    /// Shows what is being downloaded; `cancelled` may be empty. An empty text hides the bar.
    void showDownloads(const std::string& text, std::function<void()> cancelled);
    /// Shows a message for a few seconds.
    void showMessage(const std::string& text);

    /// Zooms the page to that percentage, within `smallestZoom` and `largestZoom`.
    void zoomTo(int percent);
    /// Returns the state, with the page's address.
    [[nodiscard]] WindowState state() const;
    /// Returns the number of clicks and key presses so far.
    [[nodiscard]] std::uint64_t gestures() const { return gestures_; }
    [[nodiscard]] GtkWindow* widget() const { return window_; }

private:
    struct Action {
        const char* name;
        void (*act)(HostWindow& window);
    };

    void buildHeader();
    void buildBars();
    void addActions(std::span<const Action> actions);
    void addNavigation();
    void addCommands();
    void enable(const char* action, bool isEnabled);
    void countGestures();
    void watch();
    void find(bool forward);
    void toggleHeader();
    void toggleFullScreen();
    void setFind(bool isShown);
    void print();
    void copyAddress();

    GtkWindow* window_;
    WebKitWebView* view_;
    Actions actions_;
    WindowState state_;
    std::string address_{};
    std::uint64_t gestures_ = 0;
    QuestionBar questions_{};
    OfferBar offer_{};
    std::function<void()> downloadsCancelled_{};
    guint messageTimer_ = 0;

    GtkWidget* header_ = nullptr;
    GtkWidget* title_ = nullptr;
    GtkWidget* host_ = nullptr;
    GtkWidget* reload_ = nullptr;
    GtkWidget* findBar_ = nullptr;
    GtkWidget* findEntry_ = nullptr;
    GtkWidget* downloadBar_ = nullptr;
    GtkWidget* downloadText_ = nullptr;
    GtkWidget* message_ = nullptr;
    GSimpleActionGroup* group_ = g_simple_action_group_new(); ///< the window's
};

} // namespace quorvel
