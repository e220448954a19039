#include "CommandLine/Confirmation.h"

#include "Base/TerminalText.h"

#include <istream>
#include <ostream>

namespace quorvel {

bool confirmed(const CommandContext& context, const std::string& question) {
    context.errors << terminalText(question) << " [y/N] " << std::flush;
    std::string answer;
    std::getline(context.input, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

} // namespace quorvel
