#pragma once

#include "LaunchKit/Changes/CloneChange.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/WrapperFactory.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <filesystem>
#include <string>

namespace quorvel::testing {

/// Clones to be changed, in a home of their own.
class ChangedClones {
protected:
    /// A request for a web clone "Work".
    [[nodiscard]] static WrapperFactory::Request webRequest();
    /// A request for a clone "Work" of an app with an icon, which is made.
    [[nodiscard]] WrapperFactory::Request appRequest() const;
    /// Makes the clone and returns its wrapper.
    [[nodiscard]] std::filesystem::path make(const WrapperFactory::Request& request) const;

    /// Writes a picture of that many pixels to a file of that name in the home, and returns its
    /// path.
    [[nodiscard]] std::filesystem::path writePicture(const std::string& name, int side,
                                                     unsigned color = 0xFF2060A0U) const;
    /// The hash of a clone's icon, since a picture is nothing to print.
    [[nodiscard]] static std::string iconIn(const std::filesystem::path& wrapper);
    /// Gives the clone a label, or none if the text is empty.
    static ChangedClone setLabel(const std::filesystem::path& wrapper, const std::string& text);
    /// Makes the wrapper look like one of an older Quorvel.
    static void forgetNotes(const std::filesystem::path& wrapper);

    TemporaryHome home{};
};

} // namespace quorvel::testing
