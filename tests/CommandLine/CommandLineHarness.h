#pragma once

#include "CommandLine/CommandLine.h"
#include "tests/support/StubWorkspace.h"
#include "tests/support/TemporaryHome.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <istream>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

namespace quorvel::testing {

/// The result of one command line.
struct CommandResult {
    int status = 0;
    std::string output{};
    std::string errors{};

    /// The output, parsed. Throws what the parser throws.
    [[nodiscard]] nlohmann::json json() const;
};

/// A stream of what is typed, at the time that it is asked for.
class TypedText : public std::streambuf {
public:
    TypedText(std::string text, std::function<void()> whileAsked)
        : text_(std::move(text)),
          whileAsked_(std::move(whileAsked)) {}

protected:
    int_type underflow() override;

private:
    std::string text_;
    std::function<void()> whileAsked_;
    bool isTyped_ = false;
};

/// Runs command lines in a throw-away home, with a stub for the desktop.
class CommandLineHarness {
public:
    CommandResult run(const std::vector<std::string>& arguments) {
        TypedText text(typed, whileAsked);
        std::istream input(&text);
        std::ostringstream output;
        std::ostringstream errors;
        const CommandContext context{input,
                                     output,
                                     errors,
                                     inputIsTerminal,
                                     outputIsTerminal,
                                     workspace,
                                     InstanceRegistry()};
        const int status = runCommandLine(arguments, context);
        return {status, output.str(), errors.str()};
    }

    TemporaryHome home{};
    StubWorkspace workspace{};
    std::string typed{};
    std::function<void()> whileAsked{}; ///< called when a question waits for its answer
    bool inputIsTerminal = false;
    bool outputIsTerminal = false;
};

} // namespace quorvel::testing
