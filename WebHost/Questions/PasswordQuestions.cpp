#include "WebHost/Questions/PasswordQuestions.h"

#include "Base/TerminalText.h"
#include "WebHost/Pages/FloodCaps.h"

#include <algorithm>
#include <utility>

namespace quorvel {
namespace {

constexpr std::size_t mostTries = 3;
constexpr std::size_t mostRefusals = 3;
constexpr std::size_t longestRealm = 80;
constexpr std::size_t longestHost = 253;

std::string placeOf(const PasswordAsker& asker) {
    constexpr unsigned http = 80;
    constexpr unsigned https = 443;
    const unsigned usual = asker.isEncrypted ? https : http;
    const std::string host = withoutUnsafe(asker.host, longestHost);
    return asker.port == 0 || asker.port == usual ? host : host + ":" + std::to_string(asker.port);
}

} // namespace

std::string PasswordAsker::key() const {
    // What is meant for an encrypted connection must not be sent over another one.
    return std::string(isProxy ? "proxy " : "") + (isEncrypted ? "https://" : "http://") + host +
           ":" + std::to_string(port) + " " + realm;
}

PasswordText passwordText(const PasswordAsker& asker, bool wasWrong) {
    const std::string place = placeOf(asker);
    PasswordText result{asker.isProxy ? "The proxy " + place + " wants a password"
                                      : place + " wants a password",
                        {}};
    if (wasWrong) {
        result.text += "The name or the password was wrong.\n";
    }
    if (const std::string realm = withoutUnsafe(asker.realm, longestRealm); !realm.empty()) {
        result.text += "The server says: “" + realm + "”.\n";
    }
    if (!asker.isProxy && !asker.pageHost.empty() && asker.pageHost != asker.host) {
        result.text +=
            "The page shown is from " + withoutUnsafe(asker.pageHost, longestHost) + ".\n";
    }
    result.text += asker.isEncrypted ? "The password is kept until the window is closed."
                                     : "The password is sent without encryption, and kept until "
                                       "the window is closed.";
    return result;
}

// A server can choose another realm for each question, which is then not equal to any before.
bool PasswordQuestions::mayAsk(const std::string& key) const {
    const auto tries = tries_.find(key);
    return !refused_.contains(key) && refused_.size() < mostRefusals &&
           (tries == tries_.end() || tries->second < mostTries) &&
           order_.size() < mostWaitingQuestions;
}

std::size_t PasswordQuestions::decide(const PasswordAsker& asker, bool wasWrong, Answered done) {
    const std::string key = asker.key();
    const std::size_t number = ++last_;
    if (const auto found = waiting_.find(key); found != waiting_.end()) {
        found->second.done.emplace(number, std::move(done));
        return number;
    }
    if (!mayAsk(key)) {
        done(std::nullopt);
        return number;
    }
    ++tries_[key];
    Waiting& waiting = waiting_[key];
    waiting.text = passwordText(asker, wasWrong);
    waiting.done.emplace(number, std::move(done));
    order_.push_back(key);
    if (order_.size() == 1) {
        showNext();
    }
    return number;
}

void PasswordQuestions::withdraw(std::size_t number) {
    const auto found = std::find_if(waiting_.begin(), waiting_.end(), [&](const auto& one) {
        return one.second.done.contains(number);
    });
    if (found == waiting_.end()) {
        return;
    }
    found->second.done.erase(number);
    if (!found->second.done.empty()) {
        return;
    }
    const bool isShown = order_.front() == found->first;
    std::erase(order_, found->first);
    waiting_.erase(found);
    if (isShown) {
        hide_();
        showNext();
    }
}

void PasswordQuestions::reset() {
    tries_.clear();
    refused_.clear();
}

void PasswordQuestions::showNext() {
    if (!order_.empty()) {
        const std::string key = order_.front();
        ask_(waiting_.at(key).text,
             [this, key](const std::optional<Login>& login) { finish(key, login); });
    }
}

void PasswordQuestions::finish(const std::string& key, const std::optional<Login>& login) {
    if (!login) {
        refused_.insert(key);
    }
    const auto answered = waiting_.extract(key);
    order_.erase(order_.begin());
    showNext(); // before the answers, which may lead to another question at once
    for (const auto& [number, done] : answered.mapped().done) {
        done(login);
    }
}

} // namespace quorvel
