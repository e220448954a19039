// The model of Plasma's taskbar, one row per window, and the numbers on its buttons.
import QtQuick 2.15
import org.kde.plasma.private.taskmanager 0.1 as Taskbar
import org.kde.taskmanager 0.1

Item {
    id: root
    TasksModel {
        id: tasks
        groupMode: TasksModel.GroupDisabled
        filterByVirtualDesktop: false
        filterByScreen: false
        filterByActivity: false
    }
    Repeater {
        id: rows
        model: tasks
        Item {
            property bool isWindow: model.IsWindow === true
            property var facts: ({
                id: String(model.WinIdList), title: model.display || "", appId: model.AppId || "",
                name: model.AppName || "", launcher: String(model.LauncherUrlWithoutIcon || ""),
                active: model.IsActive === true, icon: String(model.decoration)
            })
            Component.onCompleted: root.watch(model.LauncherUrlWithoutIcon)
        }
    }
    // Of every entry that had a window. It is still known when the window is gone.
    property var launchers: ({})
    Component {
        id: launcher
        Taskbar.SmartLauncherItem {}
    }
    function watch(url) {
        if (String(url || "") && !launchers[url]) {
            launchers[url] = launcher.createObject(root, { launcherUrl: url });
        }
    }
    function state() {
        var found = [];
        for (var i = 0; i < rows.count; ++i) {
            if (rows.itemAt(i).isWindow) {
                found.push(rows.itemAt(i).facts);
            }
        }
        var badges = {};
        for (var url in launchers) {
            badges[url] = launchers[url].countVisible ? launchers[url].count : 0;
        }
        return JSON.stringify({ windows: found, badges: badges });
    }
}
