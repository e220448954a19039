#include "Platform/homes/FolderVariable.h"

#include "Base/PathText.h"

namespace quorvel {

std::string folderVariable(const Environment& session, const char* name,
                           const std::string& otherwise) {
    const auto found = session.find(name);
    return found != session.end() && found->second.starts_with('/')
               ? withoutTrailingSlashes(found->second)
               : otherwise;
}

} // namespace quorvel
