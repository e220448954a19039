#include "tests/CommandLine/CommandLineHarness.h"

#include <nlohmann/json.hpp>

namespace quorvel::testing {

nlohmann::json CommandResult::json() const {
    return nlohmann::json::parse(output);
}

TypedText::int_type TypedText::underflow() {
    if (isTyped_) {
        return traits_type::eof();
    }
    isTyped_ = true;
    if (whileAsked_) {
        whileAsked_();
    }
    setg(text_.data(), text_.data(), text_.data() + text_.size());
    return text_.empty() ? traits_type::eof() : traits_type::to_int_type(text_.front());
}

} // namespace quorvel::testing
