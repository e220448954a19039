#include "WebHost/Settings/SettingsRows_linux.h"

#include "WebHost/GtkTypes_linux.h"

#include <utility>

namespace quorvel {
namespace {

constexpr int space = 6;

GtkWidget* newText(const char* text) {
    GtkWidget* const label = gtk_label_new(text);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_label_set_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    gtk_widget_set_hexpand(label, TRUE);
    return label;
}

GtkWidget* newRow(const RemovableRow& row) {
    GtkWidget* const line = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, space);
    gtk_box_append(GTK_BOX(line), newText(row.text.c_str()));
    GtkWidget* const remove = gtk_button_new_with_label("Remove");
    gtk_widget_set_valign(remove, GTK_ALIGN_CENTER);
    nameControl(remove, row.removes.c_str());
    onEvent(remove, "clicked", row.remove);
    gtk_box_append(GTK_BOX(line), remove);
    return line;
}

} // namespace

void nameControl(GtkWidget* control, const char* name) {
    gtk_accessible_update_property(GTK_ACCESSIBLE(control), GTK_ACCESSIBLE_PROPERTY_LABEL, name,
                                   -1);
}

GtkWidget* addSection(GtkWidget* page, const char* heading) {
    GtkWidget* const section = gtk_box_new(GTK_ORIENTATION_VERTICAL, space);
    GtkWidget* const label = newText(heading);
    gtk_widget_add_css_class(label, "heading");
    gtk_widget_set_margin_top(label, 2 * space);
    gtk_box_append(GTK_BOX(section), label);
    gtk_box_append(GTK_BOX(page), section);
    return section;
}

GtkWidget* addSetting(GtkWidget* section, const char* name, GtkWidget* control) {
    constexpr int widthOfNames = 170;
    GtkWidget* const line = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 2 * space);
    GtkWidget* const label = gtk_label_new_with_mnemonic(name);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_widget_set_size_request(label, widthOfNames, -1);
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), control);
    gtk_accessible_update_relation(GTK_ACCESSIBLE(control), GTK_ACCESSIBLE_RELATION_LABELLED_BY,
                                   label, nullptr, -1);
    if (GTK_IS_SWITCH(control) == FALSE) {
        gtk_widget_set_hexpand(control, TRUE);
    }
    gtk_box_append(GTK_BOX(line), label);
    gtk_box_append(GTK_BOX(line), control);
    gtk_box_append(GTK_BOX(section), line);
    return control;
}

GtkWidget* addHint(GtkWidget* section, const char* text) {
    GtkWidget* const label = newText(text);
    gtk_widget_add_css_class(label, "caption");
    gtk_widget_add_css_class(label, "dim-label");
    gtk_box_append(GTK_BOX(section), label);
    return label;
}

GtkWidget* newField(const char* placeholder, std::function<void()> entered) {
    GtkWidget* const field = gtk_entry_new();
    gtk_entry_set_placeholder_text(GTK_ENTRY(field), placeholder);
    GtkEventController* const focus = gtk_event_controller_focus_new();
    onEvent(focus, "leave", entered);
    gtk_widget_add_controller(field, focus);
    onEvent(field, "activate", std::move(entered));
    return field;
}

GtkWidget* newChoice(const char* const* texts, unsigned first, std::function<void()> chosen) {
    GtkWidget* const choice = gtk_drop_down_new_from_strings(texts);
    gtk_drop_down_set_selected(GTK_DROP_DOWN(choice), first);
    onEvent(choice, "notify::selected", std::move(chosen));
    return choice;
}

void fillList(GtkWidget* list, const std::vector<RemovableRow>& rows, const char* ifEmpty) {
    while (GtkWidget* const child = gtk_widget_get_first_child(list)) {
        gtk_box_remove(GTK_BOX(list), child);
    }
    for (const RemovableRow& row : rows) {
        gtk_box_append(GTK_BOX(list), newRow(row));
    }
    if (rows.empty()) {
        addHint(list, ifEmpty);
    }
}

} // namespace quorvel
