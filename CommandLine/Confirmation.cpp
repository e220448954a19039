#include "CommandLine/Confirmation.h"

#include "Base/TerminalText.h"

#include <istream>
#include <ostream>

namespace quorvel {

bool confirmed(const Surroundings& with, const std::string& question) {
    with.errors << terminalText(question) << " [y/N] " << std::flush;
    std::string answer;
    std::getline(with.input, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

} // namespace quorvel
