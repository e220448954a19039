#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// The names and passwords that servers ask for, by HTTP.
namespace quorvel {

/// Who asks.
struct PasswordAsker {
    std::string host{};
    unsigned port = 0;
    std::string realm{}; ///< any text, chosen by the server
    bool isProxy = false;
    bool isEncrypted = false;
    std::string pageHost{}; ///< of the page that is shown; empty for none

    /// Returns a text that is the same for questions that share an answer.
    [[nodiscard]] std::string key() const;
};

struct PasswordText {
    std::string heading{};
    std::string text{};
};

/// Returns what the user is asked: the host first, and what the server says as a quotation.
[[nodiscard]] PasswordText passwordText(const PasswordAsker& asker, bool wasWrong);

/// A user's name and password.
struct Login {
    std::string user{};
    std::string password{};
};

/// Answers servers that want a password, by asking the user: one question after the other, one for
/// all that are equal. No more of these follow three wrong answers or a refusal, and no more at all
/// follow three refusals, until `reset`.
class PasswordQuestions {
public:
    using Answered = std::function<void(std::optional<Login>)>;
    /// Shows a question; the answer comes later.
    using Ask = std::function<void(const PasswordText&, Answered)>;
    /// Hides the question that is shown, which is then not answered.
    using Hide = std::function<void()>;

    PasswordQuestions(Ask ask, Hide hide) : ask_(std::move(ask)), hide_(std::move(hide)) {}

    /// Has `done` called with the answer, now or later; std::nullopt if there is none. Returns a
    /// number for `withdraw`.
    std::size_t decide(const PasswordAsker& asker, bool wasWrong, Answered done);
    /// Nobody waits for that answer any more: `done` is not called. A question that all have
    /// withdrawn is not asked, but counts as one of the three. Does nothing after the answer.
    void withdraw(std::size_t number);
    /// The server has accepted an answer.
    void accepted(const PasswordAsker& asker) { tries_.erase(asker.key()); }
    /// The user may be asked again.
    void reset();

private:
    struct Waiting {
        PasswordText text{};
        std::map<std::size_t, Answered> done{}; ///< by their numbers
    };

    [[nodiscard]] bool mayAsk(const std::string& key) const;
    void showNext();
    void finish(const std::string& key, const std::optional<Login>& login);

    Ask ask_;
    Hide hide_;
    std::size_t last_ = 0; ///< the number given last
    std::map<std::string, std::size_t> tries_{};
    std::set<std::string> refused_{};
    std::vector<std::string> order_{}; ///< of the questions; the first is shown
    std::map<std::string, Waiting> waiting_{};
};

} // namespace quorvel
