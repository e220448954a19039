#include "Base/BundleLayout.h"

#include "Base/HiddenNames.h"

#include <initializer_list>

namespace quorvel {
namespace {

// In one allocation: listing thousands of clones makes as many paths.
std::string joined(std::string_view base, std::initializer_list<std::string_view> names) {
    std::size_t size = base.size();
    for (const std::string_view name : names) {
        size += 1 + name.size();
    }
    std::string path;
    path.reserve(size);
    path = base;
    if (path.ends_with('/')) {
        path.pop_back();
    }
    for (const std::string_view name : names) {
        path += '/';
        path += name;
    }
    return path;
}

// "/A/B.app" for "/A/.quorvel-change-ID/B.app".
std::string withoutChangeFolder(std::string bundle) {
    const std::size_t name = bundle.rfind('/');
    const std::size_t folder =
        name == 0 || name == std::string::npos ? std::string::npos : bundle.rfind('/', name - 1);
    if (folder != std::string::npos &&
        std::string_view(bundle).substr(folder + 1).starts_with(changeFolderPrefix)) {
        bundle.erase(folder, name - folder);
    }
    return bundle;
}

} // namespace

std::string contentsOf(const std::string& bundle) {
    return joined(bundle, {BundleItem::contents});
}

std::string infoPlistOf(const std::string& bundle) {
    return joined(bundle, {BundleItem::contents, BundleItem::infoPlist});
}

std::string executableOf(const std::string& bundle, std::string_view name) {
    return joined(bundle, {BundleItem::contents, BundleItem::executables, name});
}

std::string executablesOf(const std::string& bundle) {
    return joined(bundle, {BundleItem::contents, BundleItem::executables});
}

std::string resourceOf(const std::string& bundle, std::string_view name) {
    return joined(bundle, {BundleItem::contents, BundleItem::resources, name});
}

std::string resourcesOf(const std::string& bundle) {
    return joined(bundle, {BundleItem::contents, BundleItem::resources});
}

std::string frameworksOf(const std::string& bundle) {
    return joined(bundle, {BundleItem::contents, BundleItem::frameworks});
}

std::string helpersOf(const std::string& bundle) {
    return joined(bundle, {BundleItem::contents, BundleItem::helpers});
}

std::string bundleOfExecutable(std::string_view executable) {
    static const std::string inside = executableOf(".app", "");
    const std::size_t at = executable.rfind(inside);
    const std::size_t name = at + inside.size();
    if (at == std::string_view::npos || name == executable.size() ||
        executable.find('/', name) != std::string_view::npos) {
        return {};
    }
    return withoutChangeFolder(std::string(executable.substr(0, executable.find('/', at))));
}

} // namespace quorvel
