#include "QuorvelApp/model/Continuation.h"

#include <QPromise>

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <stdexcept>

namespace quorvel::testing {
namespace {

class ContinuationTest : public ::testing::Test {
protected:
    ContinuationTest() { promise_->start(); }

    void succeed(int result) {
        promise_->addResult(result);
        promise_->finish();
    }
    void fail() {
        promise_->setException(std::make_exception_ptr(std::runtime_error("broken")));
        promise_->finish();
    }

    std::optional<QPromise<int>> promise_{std::in_place};
    std::unique_ptr<QObject> context_ = std::make_unique<QObject>();
    int calls_ = 0;
    QFuture<int> ofResult_ = continued(promise_->future(), context_.get(), [this](int result) {
        ++calls_;
        return result + 1;
    });
};

TEST_F(ContinuationTest, GetsTheResult) {
    succeed(1);
    EXPECT_EQ(ofResult_.result(), 2);
    EXPECT_EQ(calls_, 1);
}

TEST_F(ContinuationTest, IsNotCalledForAFailure) {
    fail();
    EXPECT_THROW((void)ofResult_.result(), std::runtime_error);
    EXPECT_EQ(calls_, 0);
}

TEST_F(ContinuationTest, GetsAFailureIfItTakesTheFuture) {
    QPromise<int> promise;
    promise.start();
    std::string failure;
    const auto done = continued(promise.future(), context_.get(), [&](const QFuture<int>& outcome) {
        try {
            (void)outcome.result();
        } catch (const std::exception& error) {
            failure = error.what();
        }
    });
    promise.setException(std::make_exception_ptr(std::runtime_error("broken")));
    promise.finish();
    EXPECT_TRUE(done.isFinished());
    EXPECT_EQ(failure, "broken");
}

TEST_F(ContinuationTest, IsNotCalledOnceItsContextIsGone) {
    context_.reset();
    succeed(1);
    EXPECT_THROW((void)ofResult_.result(), Abandoned);
    EXPECT_EQ(calls_, 0);
}

TEST_F(ContinuationTest, IsCancelledIfTheWorkIsGivenUp) {
    promise_.reset();
    EXPECT_TRUE(ofResult_.isCanceled());
    EXPECT_TRUE(ofResult_.isFinished());
    EXPECT_EQ(calls_, 0);
}

} // namespace
} // namespace quorvel::testing
