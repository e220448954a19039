#include "tests/support/TemporaryHome.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace quorvel::testing {
namespace fs = std::filesystem;

namespace {

void set(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
        ::setenv(name.c_str(), value->c_str(), 1);
    } else {
        ::unsetenv(name.c_str());
    }
}

} // namespace

TemporaryFolder::TemporaryFolder()
    : TemporaryFolder((fs::temp_directory_path() / "quorvel-test-XXXXXX").string()) {}

TemporaryFolder::TemporaryFolder(std::string pattern) {
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary folder at " + pattern);
    }
    path_ = fs::canonical(pattern);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    // Tests take permissions away; they are given back first.
    for (auto item = fs::recursive_directory_iterator(
             path_, fs::directory_options::skip_permission_denied, ignored);
         !ignored && item != fs::recursive_directory_iterator(); item.increment(ignored)) {
        if (item->is_directory(ignored) && !item->is_symlink(ignored)) {
            fs::permissions(item->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
        }
    }
    fs::remove_all(path_, ignored);
}

ScopedEnvironment::ScopedEnvironment(std::string name, const std::optional<std::string>& value)
    : name_(std::move(name)) {
    if (const char* old = std::getenv(name_.c_str())) {
        old_ = old;
    }
    set(name_, value);
}

ScopedEnvironment::~ScopedEnvironment() {
    set(name_, old_);
}

TemporaryHome::TemporaryHome()
    : path_(folder_ / "home"),
      fixed_("CFFIXED_USER_HOME", path_.string()),
      data_("XDG_DATA_HOME", std::nullopt),
      runtime_("/tmp/q-XXXXXX"),
      runtimeVariable_("XDG_RUNTIME_DIR", runtime_.path()) {
    fs::create_directory(path_);
}

void write(const fs::path& file, std::string_view bytes) {
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush()) {
        throw std::runtime_error("could not write " + file.string());
    }
}

std::string read(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::map<std::string, std::string> treeOf(const fs::path& folder) {
    std::map<std::string, std::string> tree;
    for (const auto& item : fs::recursive_directory_iterator(folder)) {
        const std::string name = item.path().lexically_relative(folder).string();
        if (item.is_symlink()) {
            tree[name] = "-> " + fs::read_symlink(item.path()).string();
        } else {
            tree[name] = item.is_directory() ? "<folder>" : read(item.path());
        }
    }
    return tree;
}

} // namespace quorvel::testing
