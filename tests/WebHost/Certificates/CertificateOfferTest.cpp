#include "WebHost/Certificates/CertificateOffer.h"

#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// A window that does what it is told.
class CertificateOfferTest : public ::testing::Test {
protected:
    void refuse(const std::string& host, char digit, bool isRevoked = false) {
        offer_.refuse({"https://" + host + ":8443/page",
                       "It is not trusted.",
                       {.isUntrusted = true, .isRevoked = isRevoked},
                       {.subject = "CN=" + host, .fingerprint = std::string(64, digit)}});
    }
    void agree() {
        chosen_();
        offer_.answered(true);
    }

    TemporaryFolder home_;
    CertificateExceptions exceptions_{home_.path(), (home_ / "web/certificates.json").string()};
    std::vector<std::string> pages_{};
    std::vector<std::string> asked_{};
    std::vector<std::string> opened_{};
    std::vector<std::string> messages_{};
    std::string bar_{};
    std::function<void()> chosen_{};
    int closed_ = 0;
    CertificateOffer offer_{
        exceptions_,
        {.showPage = [this](const std::string& html,
                            const std::string& address) { pages_.push_back(address + html); },
         .showBar =
             [this](const std::string& text, const std::string&, std::function<void()> chosen) {
                 bar_ = text;
                 chosen_ = std::move(chosen);
             },
         .hideBar = [this] { bar_.clear(); },
         .ask = [this](const std::string& heading,
                       const std::string& text) { asked_.push_back(heading + "\n" + text); },
         .closeQuestion = [this] { ++closed_; },
         .showMessage = [this](const std::string& text) { messages_.push_back(text); },
         .open = [this](const CertificateOffer::Refused& one) { opened_.push_back(one.address); }}};
};

TEST_F(CertificateOfferTest, ThePageSaysWhyItIsNotOpened) {
    refuse("a.test", 'a');
    ASSERT_EQ(pages_.size(), 1U);
    EXPECT_THAT(pages_.front(), HasSubstr("https://a.test:8443/page"));
    EXPECT_THAT(pages_.front(), HasSubstr("It is not trusted."));
    EXPECT_THAT(pages_.front(), HasSubstr("CN=a.test"));
    EXPECT_EQ(bar_, "The connection to a.test is not secure.");
}

TEST_F(CertificateOfferTest, NothingIsOpenedBeforeTheUserAgreesToTheCertificate) {
    refuse("a.test", 'a');
    chosen_();
    EXPECT_THAT(opened_, IsEmpty());
    ASSERT_EQ(asked_.size(), 1U);
    EXPECT_THAT(asked_.front(), HasSubstr("Open a.test although it is not secure?"));
    EXPECT_THAT(asked_.front(), HasSubstr(std::string(32, 'a')));
    offer_.answered(true);
    EXPECT_THAT(opened_, ElementsAre("https://a.test:8443/page"));
    EXPECT_TRUE(exceptions_.accepts("a.test", std::string(64, 'a')));
    EXPECT_FALSE(exceptions_.accepts("a.test", std::string(64, 'b')));
    EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(CertificateOfferTest, ARefusalChangesNothingAndTheQuestionCanBeAskedAgain) {
    refuse("a.test", 'a');
    chosen_();
    chosen_();
    EXPECT_EQ(asked_.size(), 1U) << "while it is shown";
    offer_.answered(false);
    EXPECT_THAT(opened_, IsEmpty());
    EXPECT_THAT(exceptions_.list(), IsEmpty());
    chosen_();
    EXPECT_EQ(asked_.size(), 2U);
}

TEST_F(CertificateOfferTest, WhatComesAfterTheQuestionIsNotAgreedTo) {
    refuse("a.test", 'a');
    chosen_();
    refuse("a.test", 'b');
    EXPECT_EQ(closed_, 1);
    offer_.answered(true);
    EXPECT_THAT(opened_, IsEmpty());
    EXPECT_THAT(exceptions_.list(), IsEmpty());
}

// A server can choose everything in its certificate but the fingerprint.
TEST_F(CertificateOfferTest, TheKeyDistinguishesHostsAndCertificates) {
    const CertificateOffer::Refused one{
        "https://a.test/", "", {}, {.subject = "CN=a", .fingerprint = "1"}};
    CertificateOffer::Refused other = one;
    other.address = "https://a.test/page";
    other.details.subject = "CN=b";
    EXPECT_EQ(other.key(), one.key());
    other.details = {.subject = "CN=a", .fingerprint = "2"};
    EXPECT_NE(other.key(), one.key());
    other = one;
    other.address = "https://b.test/";
    EXPECT_NE(other.key(), one.key());
}

TEST_F(CertificateOfferTest, NothingIsOfferedOnceAnotherPageIsOnItsWay) {
    refuse("a.test", 'a');
    offer_.withdraw();
    EXPECT_EQ(bar_, "");
    EXPECT_EQ(closed_, 0) << "there was no question";
    agree();
    EXPECT_THAT(asked_, IsEmpty());
    EXPECT_THAT(opened_, IsEmpty());
}

TEST_F(CertificateOfferTest, ARevokedCertificateCannotBeAccepted) {
    refuse("a.test", 'a', true);
    EXPECT_EQ(pages_.size(), 1U);
    EXPECT_EQ(bar_, "");
    offer_.answered(true);
    EXPECT_THAT(opened_, IsEmpty());
}

TEST_F(CertificateOfferTest, AnExceptionThatCannotBeKeptHoldsForThisTime) {
    std::filesystem::create_directories(home_ / "web/certificates.json/in the way");
    refuse("a.test", 'a');
    agree();
    EXPECT_THAT(messages_, ElementsAre("The certificate can’t be remembered"));
    EXPECT_THAT(opened_, ElementsAre("https://a.test:8443/page"));
}

} // namespace
} // namespace quorvel
