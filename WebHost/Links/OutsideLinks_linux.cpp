#include "WebHost/Links/OutsideLinks_linux.h"

#include "LaunchKit/Launching/LinkDoorSetup.h"
#include "LaunchKit/Launching/LinkOpener.h"
#include "LinkDoor/DefaultBrowser.h"
#include "LinkDoor/LinkAddress.h"
#include "LinkDoor/LinkSession.h"
#include "Platform/files/ContainedFolder.h"
#include "Platform/files/PlatformError.h"
#include "Platform/processes/FileMask.h"
#include "WebHost/Links/WebAddress.h"

namespace quorvel {

OutsideLinks::OutsideLinks(std::string home, const std::optional<std::string>& links,
                           const Environment& session, const Environment& host, mode_t fileMask)
    : door_(linkDoorProgram(session)),
      doorEnvironment_(host),
      fileMask_(fileMask) {
    LinkSession record = LinkSession::between(session, host);
    outside_ = record.outside(host);
    record.opener = linkOpenerProgram(links);
    // The program that reads the record knows nothing but the home.
    if (!replaceFileBelow(home, linkSessionFile(home), record.text())) {
        door_.reset();
    }
    doorEnvironment_[cloneHomeVariable] = std::move(home);
    if (const auto hops = session.find(linkHopsVariable); hops != session.end()) {
        doorEnvironment_[linkHopsVariable] = hops->second;
    }
}

bool OutsideLinks::open(const std::string& address) const {
    if (schemeOf(address).empty() || address.size() > longestLinkAddress) {
        return false;
    }
    const ScopedFileMask mask(fileMask_);
    try {
        if (door_ && hasLinkScheme(address)) {
            startDetached(*door_, {address}, doorEnvironment_);
            return true;
        }
        const auto opener = realXdgOpen();
        if (opener) {
            startDetached(*opener, {address}, outside_);
        }
        return opener.has_value();
    } catch (const PlatformError&) {
        return false;
    }
}

} // namespace quorvel
