#include "Platform/homes/UserPaths.h"

#include "Base/PathText.h"
#include "Platform/homes/HomeOrder.h"

#include <cstdlib>
#include <mutex>
#include <optional>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel::UserPaths {
namespace {

std::optional<std::string> fromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr || value[0] != '/') {
        return std::nullopt;
    }
    return withoutTrailingSlashes(std::string(value));
}

// The buffer has to hold the entry's texts; ERANGE means that it is too small.
template<typename Lookup>
std::optional<std::string> homeFromDatabase(const Lookup& lookup) {
    std::string buffer(1024, '\0');
    passwd entry{};
    passwd* found = nullptr;
    while (lookup(&entry, buffer.data(), buffer.size(), &found) == ERANGE &&
           buffer.size() < std::size_t{1} << 20U) {
        buffer.resize(buffer.size() * 2);
    }
    if (found == nullptr || found->pw_dir == nullptr || found->pw_dir[0] != '/') {
        return std::nullopt;
    }
    return withoutTrailingSlashes(std::string(found->pw_dir));
}

// Cached: the answer does not change, and may come from a remote server. Never destroyed, since
// threads that outlive `main` ask, too.
const std::optional<std::string>& currentUsersHome() {
    static const auto& listed = *new std::optional<std::string>(
        homeFromDatabase([](passwd* entry, char* buffer, std::size_t size, passwd** found) {
            return getpwuid_r(getuid(), entry, buffer, size, found);
        }));
    return listed;
}

std::optional<std::string> homeOf(const std::string& user) {
    return homeFromDatabase([&](passwd* entry, char* buffer, std::size_t size, passwd** found) {
        return getpwnam_r(user.c_str(), entry, buffer, size, found);
    });
}

} // namespace

std::string home() {
    if (auto fixed = fromEnvironment("CFFIXED_USER_HOME")) {
        return *fixed;
    }
    const std::optional<std::string> variable = fromEnvironment("HOME");
    if (variable && homeVariableComesFirst()) {
        return *variable;
    }
    if (const auto& listed = currentUsersHome()) {
        return *listed;
    }
    return variable.value_or("/");
}

std::optional<std::string> listedHome() {
    return currentUsersHome();
}

std::string expandTilde(std::string_view path) {
    if (path.empty() || path.front() != '~') {
        return std::string(path);
    }
    const std::size_t slash = path.find('/');
    const std::string_view user =
        path.substr(1, slash == std::string_view::npos ? std::string_view::npos : slash - 1);
    const std::optional<std::string> base = user.empty() ? home() : homeOf(std::string(user));
    if (!base) {
        return std::string(path);
    }
    const std::string_view rest =
        slash == std::string_view::npos ? std::string_view{} : path.substr(slash);
    return withoutTrailingSlashes((*base == "/" && !rest.empty() ? std::string{} : *base) +
                                  std::string(rest));
}

std::filesystem::path temporaryFolder() {
    return fromEnvironment("TMPDIR").value_or("/tmp");
}

std::vector<std::string> allHomes() {
    std::vector<std::string> homes{home()};
    for (const auto& other : {currentUsersHome(), fromEnvironment("HOME")}) {
        if (other && other != homes.front()) {
            homes.push_back(*other);
        }
    }
    return homes;
}

std::vector<OtherHome> otherUsersHomes() {
    // getpwent() keeps one position per process.
    static std::mutex guard;
    const std::lock_guard lock(guard);
    std::vector<OtherHome> homes;
    ::setpwent();
    while (const passwd* entry = ::getpwent()) {
        struct stat status {};
        // Many system users have "/" or a shared folder as their home.
        if (entry->pw_uid != ::getuid() && entry->pw_dir != nullptr && entry->pw_dir[0] == '/' &&
            ::stat(entry->pw_dir, &status) == 0 && status.st_uid == entry->pw_uid) {
            homes.push_back({entry->pw_name, withoutTrailingSlashes(std::string(entry->pw_dir))});
        }
    }
    ::endpwent();
    return homes;
}

} // namespace quorvel::UserPaths
