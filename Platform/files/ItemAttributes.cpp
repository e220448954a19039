#include "Platform/files/ItemAttributes.h"

#include "Platform/files/VolumeTransfer.h"

#include <tuple>
#include <unistd.h>

namespace quorvel {
namespace {

constexpr mode_t everyBit = 07777;
constexpr mode_t withoutOwnersRights = 01777;

} // namespace

mode_t modeOfCopy(const struct stat& original, bool sameOwner) {
    return original.st_mode & (sameOwner ? everyBit : withoutOwnersRights);
}

bool copyAttributes(int original, int copy, const struct stat& facts) {
    struct stat now {};
    if (::fstat(copy, &now) != 0) {
        return false;
    }
    const bool sameOwner = (now.st_uid == facts.st_uid && now.st_gid == facts.st_gid) ||
                           ::fchown(copy, facts.st_uid, facts.st_gid) == 0;
    if (!sameOwner) {
        // Only root may give a file away, but anyone may give it to a group of their own.
        std::ignore = ::fchown(copy, static_cast<uid_t>(-1), facts.st_gid);
    }
    // The mode last: a change of the owner clears some of its bits.
    return VolumeTransfer::copyExtendedAttributes(original, copy) &&
           ::fchmod(copy, modeOfCopy(facts, sameOwner)) == 0;
}

} // namespace quorvel
