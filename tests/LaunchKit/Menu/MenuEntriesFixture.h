#pragma once

#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "Platform/processes/Process.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include <QImage>

namespace quorvel::testing {

/// A desktop entry that is cloned.
inline const std::string targetEntry = "[Desktop Entry]\n"
                                       "Type=Application\n"
                                       "Name=Reader\n"
                                       "Exec=/bin/true --new %u\n"
                                       "Categories=Office;Viewer;\n"
                                       "Keywords=book;\n"
                                       "MimeType=application/pdf;image/png;\n"
                                       "StartupNotify=false\n"
                                       "StartupWMClass=reader\n"
                                       "DBusActivatable=true\n";

/// Clones whose entries are published in the menu of a throw-away home.
class MenuEntriesFixture : public ::testing::Test {
protected:
    MenuEntriesFixture() { write(target(), targetEntry); }

    [[nodiscard]] std::filesystem::path target() const { return home_ / "reader.desktop"; }
    [[nodiscard]] std::filesystem::path clones() const { return home_ / "Applications"; }
    [[nodiscard]] std::filesystem::path entries() const {
        return home_ / ".local/share/applications";
    }
    [[nodiscard]] std::filesystem::path pictures(const std::string& size) const {
        return home_ / ".local/share/icons/hicolor" / size / "apps";
    }

    [[nodiscard]] static InstanceConfig command(const std::string& name) {
        InstanceConfig config = minimalConfig(name);
        config.kind = ShortcutKind::command;
        config.commandPath = "/bin/true";
        return config;
    }

    // An app clone's configuration, whose target is a desktop entry.
    [[nodiscard]] InstanceConfig reader(const std::string& name = "Work") const {
        InstanceConfig config = minimalConfig(name);
        config.targetAppPath = target().string();
        return config;
    }

    // A wrapper as the generator writes it.
    [[nodiscard]] InstanceRecord made(const InstanceConfig& config) const {
        const std::filesystem::path wrapper =
            makeWrapper(clones() / (config.displayName + ".app"), config);
        write(wrapper / "Contents/MacOS/runner", "#!/bin/sh\n");
        makeExecutable(wrapper / "Contents/MacOS/runner");
        write(wrapper / "Contents/Info.plist", "<plist/>");
        return {wrapper, config};
    }

    static void addIcon(const InstanceRecord& record, const std::string& bytes) {
        write(record.bundleURL / "Contents/Resources/AppIcon.icns", bytes);
    }

    [[nodiscard]] static DesktopEntry entryOf(const InstanceRecord& record) {
        return menuEntryOf(record).entry;
    }

    [[nodiscard]] std::filesystem::path published(const InstanceRecord& record) const {
        return entries() / menuEntryOf(record).fileName;
    }

    [[nodiscard]] std::map<std::string, std::string> menu() const {
        return treeOf(home_ / ".local/share");
    }

    [[nodiscard]] static QImage pictureIn(const std::filesystem::path& file) {
        return QImage::fromData(QByteArray::fromStdString(read(file)));
    }

    // What the desktops' own checker objects to.
    [[nodiscard]] static std::string objections(const std::filesystem::path& file) {
        return Process::capture({.executable = "/usr/bin/desktop-file-validate",
                                 .arguments = {"--no-hints", file.string()}},
                                4096);
    }

    TemporaryHome home_{};
};

} // namespace quorvel::testing
