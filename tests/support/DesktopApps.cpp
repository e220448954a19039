#include "tests/support/DesktopApps.h"

#include "tests/support/AppBundles.h"

namespace quorvel::testing {
namespace fs = std::filesystem;

DesktopApps::DesktopApps()
    : path_("PATH", (folder_ / "bin").string()),
      data_("XDG_DATA_HOME", (folder_ / "share").string()),
      others_("XDG_DATA_DIRS", (folder_ / "none").string()) {
    fs::create_directories(folder_ / "bin");
    write(at("share/icons/hicolor/index.theme"),
          "[Icon Theme]\nName=hicolor\nDirectories=48x48/apps,256x256/apps,scalable/apps,\n"
          "[48x48/apps]\nSize=48\n[256x256/apps]\nSize=256\n[scalable/apps]\nSize=128\n");
}

fs::path DesktopApps::addProgram(const std::string& name, const fs::path& program) const {
    fs::path file = at("bin/" + name);
    fs::copy_file(program, file, fs::copy_options::overwrite_existing);
    makeExecutable(file);
    return file;
}

fs::path DesktopApps::addScript(const std::string& name, const std::string& text) const {
    fs::path file = at("bin/" + name);
    write(file, "#!/bin/sh\n" + text);
    makeExecutable(file);
    return file;
}

fs::path DesktopApps::addEntry(const std::string& id, const std::string& exec,
                               const std::string& keys) const {
    fs::path file = at("share/applications/" + id + ".desktop");
    write(file, "[Desktop Entry]\nType=Application\nName=" + id + "\nExec=" + exec + "\n" + keys);
    return file;
}

fs::path DesktopApps::addIcon(const std::string& size, const std::string& fileName,
                              const std::string& bytes) const {
    fs::path file = at("share/icons/hicolor/" + size + "/apps/" + fileName);
    write(file, bytes);
    return file;
}

} // namespace quorvel::testing
