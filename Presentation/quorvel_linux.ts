<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- English as Linux desktops speak it: what the sources name as macOS does. -->
<TS version="2.1" sourcelanguage="en" language="en">
<context>
    <name>CloneSwitch</name>
    <message>
        <source>Show an icon in the menu bar</source>
        <translation>Show an icon in the tray</translation>
    </message>
    <message>
        <source>Menu bar icon</source>
        <translation>Tray icon</translation>
    </message>
</context>
<context>
    <name>CreateOptions</name>
    <message>
        <source>Show no Dock icon</source>
        <translation>Show no icon in the taskbar (no effect on this system)</translation>
    </message>
</context>
<context>
    <name>Deletion</name>
    <message>
        <source>It goes on until you quit it, perhaps under the original’s icon in the Dock.</source>
        <translation>It goes on until you quit it, without its menu entry and perhaps under the original’s icon.</translation>
    </message>
</context>
<context>
    <name>Migration</name>
    <message>
        <source>“%1” now shares Downloads, Documents &amp; Desktop with your Mac — nothing needed moving.</source>
        <translation>“%1” now shares your Downloads, Documents &amp; Desktop — nothing needed moving.</translation>
    </message>
</context>
<context>
    <name>ProbeTexts</name>
    <message>
        <source>into your Application Support</source>
        <translation>into your own application data</translation>
    </message>
    <message>
        <source>into your Preferences</source>
        <translation>into your own settings</translation>
    </message>
</context>
<context>
    <name>quorvel::AdvancedOptions</name>
    <message>
        <source>Draws a short text badge on the Dock icon to tell clones apart.</source>
        <translation>Draws a short text badge on the icon to tell clones apart.</translation>
    </message>
    <message>
        <source>Hide this clone's Dock icon (menu-bar/background app)</source>
        <translation>Hide this clone's taskbar icon (no effect on this system)</translation>
    </message>
    <message>
        <source>Show in Finder's “Open With”</source>
        <translation>Show in the file manager's “Open With”</translation>
    </message>
    <message>
        <source>Show a menu-bar icon while running</source>
        <translation>Show a tray icon while running</translation>
    </message>
    <message>
        <source>Menu-bar icon as monochrome (template)</source>
        <translation>Tray icon as monochrome (template)</translation>
    </message>
    <message>
        <source>Off (default): saved files go to your shared Finder folders. On: the clone keeps its own, inside its data folder — for a sandboxed or automated clone you don't want touching your files.</source>
        <translation>Off (default): saved files go to your own shared folders. On: the clone keeps its own, inside its data folder — for a sandboxed or automated clone you don't want touching your files.</translation>
    </message>
</context>
<context>
    <name>quorvel::AppGridModel</name>
    <message>
        <source>Sandboxed — you'll get a separate Dock icon, but macOS won't let Quorvel isolate its data</source>
        <translation>Sandboxed — you'll get a separate launcher, but the sandbox won't let Quorvel isolate its data</translation>
    </message>
</context>
<context>
    <name>quorvel::AppModel</name>
    <message>
        <source>“%1” is sandboxed. macOS confines it to a shared, protected container that can't be redirected, so two copies would share the same data and account. Quorvel can still make a separate Dock launcher, but it won't isolate the data.</source>
        <translation>“%1” is sandboxed. Its sandbox confines it to a protected folder that can't be redirected, so two copies would share the same data and account. Quorvel can still make a separate launcher, but it won't isolate the data.</translation>
    </message>
</context>
<context>
    <name>quorvel::CloneCommands</name>
    <message>
        <source>&amp;Reveal in Finder</source>
        <translation>&amp;Reveal in File Manager</translation>
    </message>
</context>
<context>
    <name>quorvel::CloneDetailView</name>
    <message>
        <source>&amp;Reveal in Finder</source>
        <translation>&amp;Reveal in File Manager</translation>
    </message>
    <message>
        <source>Files in this clone's Downloads, Documents and Desktop move into your Mac's real folders — nothing is overwritten (a name clash gets a number). Future saves go there too, while the clone's accounts and settings stay isolated. Quit the clone first if it's running.</source>
        <translation>Files in this clone's Downloads, Documents and Desktop move into your own real folders — nothing is overwritten (a name clash gets a number). Future saves go there too, while the clone's accounts and settings stay isolated. Quit the clone first if it's running.</translation>
    </message>
</context>
<context>
    <name>quorvel::ConfigurationPane</name>
    <message>
        <source>This app is sandboxed. macOS won't let Quorvel give it a separate data container, so both copies will share the same account and settings. You'll get a separate Dock icon, but not isolated data.</source>
        <translation>This app is sandboxed. Its sandbox won't let Quorvel give it a separate data folder, so both copies will share the same account and settings. You'll get a separate launcher, but not isolated data.</translation>
    </message>
</context>
<context>
    <name>quorvel::FileForm</name>
    <message>
        <source>Creates a Dock item that opens this file or folder with its default app.</source>
        <translation>Creates a launcher that opens this file or folder with its default app.</translation>
    </message>
</context>
<context>
    <name>quorvel::LogPanel</name>
    <message>
        <source>Reveal in Finder</source>
        <translation>Reveal in File Manager</translation>
    </message>
</context>
<context>
    <name>quorvel::MigrationCallout</name>
    <message>
        <source>Files it saves are tucked inside its data folder. Move them into your Mac's shared folders and share them from now on — accounts and settings stay isolated.</source>
        <translation>Files it saves are tucked inside its data folder. Move them into your own folders and share them from now on — accounts and settings stay isolated.</translation>
    </message>
</context>
</TS>
