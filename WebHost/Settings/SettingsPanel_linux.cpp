#include "WebHost/Settings/SettingsPanel_linux.h"

#include "WebHost/Settings/SettingsRows_linux.h"
#include "WebHost/Window/WindowState.h"

#include <utility>

namespace quorvel {
namespace {

std::string textIn(GtkWidget* field) {
    return gtk_editable_get_text(GTK_EDITABLE(field));
}

template<typename Case>
Case chosenIn(GtkWidget* choice) {
    return static_cast<Case>(gtk_drop_down_get_selected(GTK_DROP_DOWN(choice)));
}

GtkWidget* addList(GtkWidget* section) {
    GtkWidget* const list = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
    gtk_box_append(GTK_BOX(section), list);
    return list;
}

void closeWithEscape(GtkWindow* window) {
    GtkEventController* const keys = gtk_shortcut_controller_new();
    gtk_shortcut_controller_add_shortcut(
        GTK_SHORTCUT_CONTROLLER(keys), gtk_shortcut_new(gtk_shortcut_trigger_parse_string("Escape"),
                                                        gtk_named_action_new("window.close")));
    gtk_widget_add_controller(GTK_WIDGET(window), keys);
}

} // namespace

SettingsPanel::SettingsPanel(GtkWindow* parent, Services services, GtkWidget* data)
    : window_(GTK_WINDOW(gtk_window_new())),
      editor_(std::move(services)) {
    constexpr int width = 560;
    constexpr int height = 700;
    constexpr int margin = 18;
    gtk_window_set_title(window_, SettingsText::title(editor_.services().name).c_str());
    gtk_window_set_default_size(window_, width, height);
    gtk_window_set_transient_for(window_, parent);
    gtk_window_set_hide_on_close(window_, TRUE);
    closeWithEscape(window_);
    GtkWidget* const page = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    for (const auto set : {gtk_widget_set_margin_start, gtk_widget_set_margin_end,
                           gtk_widget_set_margin_top, gtk_widget_set_margin_bottom}) {
        set(page, margin);
    }
    problem_ = addHint(page, "");
    gtk_widget_remove_css_class(problem_, "dim-label");
    gtk_widget_add_css_class(problem_, "error");
    addPages(page);
    addConnection(page);
    addLinks(page);
    addLists(page);
    gtk_box_append(GTK_BOX(page), data);
    GtkWidget* const scrolled = gtk_scrolled_window_new();
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER,
                                   GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(scrolled), page);
    gtk_window_set_child(window_, scrolled);
}

SettingsPanel::~SettingsPanel() {
    isUpdating_ = true; // what loses the focus now is not to be saved
    gtk_window_destroy(window_);
}

void SettingsPanel::addPages(GtkWidget* page) {
    static constexpr const char* colors[] = {"Like the desktop", "Light", "Dark", nullptr};
    constexpr double step = 10;
    GtkWidget* const section = addSection(page, "Pages");
    zoom_ = addSetting(section, "_Zoom in percent",
                       gtk_spin_button_new_with_range(smallestZoom, largestZoom, step));
    onEvent(zoom_, "value-changed", [this] {
        if (!isUpdating_) {
            editor_.services().zoomTo(gtk_spin_button_get_value_as_int(GTK_SPIN_BUTTON(zoom_)));
        }
    });
    colors_ = addSetting(
        section, "_Colors", newChoice(colors, 0, [this] {
            change([this](SiteSettings& all) { all.colors = chosenIn<PageColors>(colors_); });
        }));
    spelling_ = addSetting(section, "Check _spelling", gtk_switch_new());
    onEvent(spelling_, "notify::active", [this] {
        change([this](SiteSettings& all) {
            all.checksSpelling = gtk_switch_get_active(GTK_SWITCH(spelling_)) == TRUE;
        });
    });
    languages_ = addSetting(section, "Spelling _languages", newField("en_US, de_DE", [this] {
                                change([this](SiteSettings& all) {
                                    all.spellingLanguages = languagesIn(textIn(languages_));
                                });
                            }));
    userAgent_ =
        addSetting(section, "_User agent", newField("The usual one", [this] {
                       change([this](SiteSettings& all) { all.userAgent = textIn(userAgent_); });
                   }));
    addHint(section, SettingsText::userAgent);
}

void SettingsPanel::addConnection(GtkWidget* page) {
    static constexpr const char* proxies[] = {"Like the system", "None", "This address:", nullptr};
    const auto changed = [this] {
        change([this](SiteSettings& all) {
            all.proxy = chosenIn<ProxyUse>(proxy_);
            all.proxyAddress = textIn(proxyAddress_);
        });
    };
    GtkWidget* const section = addSection(page, "Connection");
    proxy_ = addSetting(section, "Pro_xy", newChoice(proxies, 0, changed));
    proxyAddress_ = addSetting(section, "Proxy _address", newField("http://host:8080", changed));
}

void SettingsPanel::addLinks(GtkWidget* page) {
    static constexpr const char* places[] = {"Open in this window", "Open in the browser", nullptr};
    GtkWidget* const section = addSection(page, "Links");
    addHint(section, SettingsText::links);
    links_ = addList(section);
    ruleHost_ = addSetting(section, "_Host", gtk_entry_new());
    gtk_entry_set_placeholder_text(GTK_ENTRY(ruleHost_), "example.com");
    onEvent(ruleHost_, "activate", [this] { addRule(); });
    rulePlace_ = addSetting(section, "Lin_ks to it", newChoice(places, 0, [] {}));
    GtkWidget* const add = gtk_button_new_with_mnemonic("Add _Rule");
    gtk_widget_set_halign(add, GTK_ALIGN_END);
    onEvent(add, "clicked", [this] { addRule(); });
    gtk_box_append(GTK_BOX(section), add);
}

void SettingsPanel::addLists(GtkWidget* page) {
    GtkWidget* const answers = addSection(page, "Permissions");
    addHint(answers, SettingsText::permissions);
    permissions_ = addList(answers);
    GtkWidget* const forget = gtk_button_new_with_mnemonic("Remove All _Permissions");
    gtk_widget_set_halign(forget, GTK_ALIGN_END);
    onEvent(forget, "clicked", [this] {
        showProblem(editor_.removePermissions());
        fillLists();
    });
    gtk_box_append(GTK_BOX(answers), forget);
    GtkWidget* const certificates = addSection(page, "Accepted Certificates");
    addHint(certificates, SettingsText::certificates);
    certificates_ = addList(certificates);
}

void SettingsPanel::change(const std::function<void(SiteSettings&)>& edit) {
    if (!isUpdating_) {
        showProblem(editor_.change(edit));
    }
}

void SettingsPanel::addRule() {
    const std::string problem = editor_.addRule(textIn(ruleHost_), chosenIn<LinkPlace>(rulePlace_));
    if (problem.empty()) {
        setText(ruleHost_, "");
    }
    showProblem(problem);
    fillLists();
}

SiteSettings SettingsPanel::entered() const {
    SiteSettings all = editor_.settings();
    all.spellingLanguages = languagesIn(textIn(languages_));
    all.userAgent = textIn(userAgent_);
    all.proxy = chosenIn<ProxyUse>(proxy_);
    all.proxyAddress = textIn(proxyAddress_);
    return all;
}

void SettingsPanel::showProblem(std::string problem) {
    if (problem.empty()) {
        problem = problemIn(entered());
    }
    gtk_label_set_text(GTK_LABEL(problem_), problem.c_str());
    gtk_widget_set_visible(problem_, problem.empty() ? FALSE : TRUE);
}

void SettingsPanel::setText(GtkWidget* field, const std::string& text) {
    gtk_editable_set_text(GTK_EDITABLE(field), text.c_str());
}

void SettingsPanel::fillLists() {
    const auto removed = [this](const std::string& problem) {
        showProblem(problem);
        fillLists();
    };
    fillList(links_, editor_.links(removed), SettingsText::noLinks);
    fillList(permissions_, editor_.permissions(removed), SettingsText::noPermissions);
    fillList(certificates_, editor_.certificates(removed), SettingsText::noCertificates);
}

void SettingsPanel::update() {
    isUpdating_ = true;
    const SiteSettings& now = editor_.settings();
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(zoom_), editor_.services().zoom());
    gtk_drop_down_set_selected(GTK_DROP_DOWN(colors_), static_cast<guint>(now.colors));
    gtk_switch_set_active(GTK_SWITCH(spelling_), now.checksSpelling ? TRUE : FALSE);
    std::string languages;
    for (const std::string& language : now.spellingLanguages) {
        languages += (languages.empty() ? "" : ", ") + language;
    }
    setText(languages_, languages);
    setText(userAgent_, now.userAgent);
    gtk_drop_down_set_selected(GTK_DROP_DOWN(proxy_), static_cast<guint>(now.proxy));
    setText(proxyAddress_, now.proxyAddress);
    isUpdating_ = false;
    fillLists();
    showProblem(editor_.fileProblem());
}

void SettingsPanel::show() {
    update();
    gtk_window_present(window_);
}

} // namespace quorvel
