#pragma once

#include "Base/PropertyList.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace quorvel {
struct InstanceConfig;
}

namespace quorvel::testing {

/// Returns the path of the helper program, see tests/helpers.
[[nodiscard]] std::filesystem::path helperProgram();

/// Returns the path of the runner that was built.
[[nodiscard]] std::filesystem::path runnerProgram();

/// Makes an application bundle at `bundle` with this property list (and, if it names none, an
/// identifier and an executable named after the folder), whose executable is `executable`
/// copied in. Returns `bundle`.
std::filesystem::path makeAppBundle(const std::filesystem::path& bundle,
                                    PropertyListDictionary info = {},
                                    const std::filesystem::path& executable = helperProgram());

/// The same with a shell script of this text (after "#!/bin/sh") as its executable.
std::filesystem::path makeScriptedAppBundle(const std::filesystem::path& bundle,
                                            std::string_view script,
                                            PropertyListDictionary info = {});

/// Makes a bundle that contains only this configuration, and returns its path.
std::filesystem::path makeWrapper(const std::filesystem::path& bundle,
                                  const InstanceConfig& config);

/// The same with `minimalConfig(name)`.
std::filesystem::path makeWrapper(const std::filesystem::path& bundle, const std::string& name);

/// Returns a configuration with the three required fields.
[[nodiscard]] InstanceConfig minimalConfig(std::string name = "Work");

/// Makes the file executable.
void makeExecutable(const std::filesystem::path& file);

} // namespace quorvel::testing
