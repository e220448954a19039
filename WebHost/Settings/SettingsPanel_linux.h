#pragma once

#include "WebHost/GtkTypes_linux.h"
#include "WebHost/Settings/SettingsEditor.h"

#include <gtk/gtk.h>

#include <functional>
#include <string>

namespace quorvel {

/// The window with a clone's Site Settings. Every choice takes effect at once.
class SettingsPanel {
public:
    using Services = SettingsServices;

    /// `data` is shown as the last section, and is this window's from now on.
    SettingsPanel(GtkWindow* parent, Services services, GtkWidget* data);
    SettingsPanel(const SettingsPanel&) = delete;
    SettingsPanel& operator=(const SettingsPanel&) = delete;
    ~SettingsPanel();

    /// Shows the window with the current settings.
    void show();

private:
    void addPages(GtkWidget* page);
    void addConnection(GtkWidget* page);
    void addLinks(GtkWidget* page);
    void addLists(GtkWidget* page);
    void update();
    void fillLists();
    void addRule();
    void setText(GtkWidget* field, const std::string& text);
    /// Changes the settings, unless this is only about showing them.
    void change(const std::function<void(SiteSettings&)>& edit);
    /// Returns the settings as they are in the fields, whether they can be used or not.
    [[nodiscard]] SiteSettings entered() const;
    /// Shows what went wrong or, if nothing did, what is wrong in the fields.
    void showProblem(std::string problem);

    GtkWindow* window_;
    SettingsEditor editor_;
    bool isUpdating_ = false;
    GtkWidget* problem_ = nullptr;
    GtkWidget* zoom_ = nullptr;
    GtkWidget* colors_ = nullptr;
    GtkWidget* spelling_ = nullptr;
    GtkWidget* languages_ = nullptr;
    GtkWidget* userAgent_ = nullptr;
    GtkWidget* proxy_ = nullptr;
    GtkWidget* proxyAddress_ = nullptr;
    GtkWidget* ruleHost_ = nullptr;
    GtkWidget* rulePlace_ = nullptr;
    GtkWidget* links_ = nullptr;
    GtkWidget* permissions_ = nullptr;
    GtkWidget* certificates_ = nullptr;
};

} // namespace quorvel
