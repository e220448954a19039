#include "Presentation/StrategyTexts.h"

namespace quorvel {

std::string strategyLabel(std::string_view rawValue, const Translate& translate) {
    const auto strategy = caseNamed<Strategy>(rawValue);
    if (!strategy) {
        return std::string(rawValue);
    }
    switch (*strategy) {
    case Strategy::homeOverride:
        return translate("Strategy", "Home override (A)");
    case Strategy::containerRedirect:
        return translate("Strategy", "Container redirect (B)");
    case Strategy::wrapperIdentity:
        return translate("Strategy", "Wrapper identity (C)");
    case Strategy::unsupported:
        break;
    }
    return translate("Strategy", "Unsupported");
}

std::string strategyReason(Strategy strategy, const Translate& translate) {
    switch (strategy) {
    case Strategy::homeOverride:
        return translate("Strategy", "a home folder of its own keeps the clone’s data apart");
    case Strategy::containerRedirect:
        return translate("Strategy",
                         "it writes data outside its home folder, which has to be redirected");
    case Strategy::wrapperIdentity:
        return translate("Strategy", "it writes into its sandbox container, which only an identity "
                                     "of its own keeps apart");
    case Strategy::unsupported:
        break;
    }
    return translate("Strategy", "it can’t be isolated");
}

} // namespace quorvel
