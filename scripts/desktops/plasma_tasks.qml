// The model behind Plasma's taskbar, one row per window.
import QtQuick 2.15
import org.kde.taskmanager 0.1

Item {
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
        }
    }
    function windows() {
        var found = [];
        for (var i = 0; i < rows.count; ++i) {
            if (rows.itemAt(i).isWindow) {
                found.push(rows.itemAt(i).facts);
            }
        }
        return JSON.stringify(found);
    }
}
