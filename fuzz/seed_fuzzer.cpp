// Reads what says where an application keeps its data: a list of profiles, and a package.
#include "LaunchKit/Copying/ElectronName.h"
#include "LaunchKit/Copying/FirefoxProfiles.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

// Both readers are given the folder that contains the file.
class Folder {
public:
    Folder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "seed-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            std::abort();
        }
        path_ = pattern;
        std::filesystem::create_directory(path_ / "resources");
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { std::filesystem::remove_all(path_); }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_{};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorvel;
    static const Folder folder;
    for (const char* name : {"profiles.ini", "resources/app.asar"}) {
        std::ofstream(folder.path() / name)
            .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    const auto profile = defaultFirefoxProfile(folder.path());
    const auto name = electronName(folder.path());
    if ((profile && !profile->is_absolute()) ||
        (name && (name->empty() || name->find('/') != std::string::npos))) {
        std::abort();
    }
    return 0;
}
