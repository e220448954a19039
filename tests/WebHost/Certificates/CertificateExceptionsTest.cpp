#include "WebHost/Certificates/CertificateExceptions.h"

#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using Exception = CertificateExceptions::Exception;

const std::string one(64, '1');
const std::string two(64, 'a');

class CertificateExceptionsTest : public ::testing::Test {
protected:
    [[nodiscard]] CertificateExceptions store() const { return {home_.path(), file()}; }
    [[nodiscard]] std::string file() const { return (home_ / "web/certificates.json").string(); }

    TemporaryFolder home_;
};

TEST_F(CertificateExceptionsTest, AnExceptionIsForOneHostAndOneCertificate) {
    CertificateExceptions first = store();
    EXPECT_FALSE(first.accepts("a.b", one));
    EXPECT_TRUE(first.add("a.b", one));
    const CertificateExceptions second = store();
    EXPECT_TRUE(second.accepts("a.b", one));
    EXPECT_FALSE(second.accepts("a.b", two)) << "another certificate";
    EXPECT_FALSE(second.accepts("x.a.b", one)) << "another host";
    EXPECT_FALSE(second.accepts("a.b", ""));
}

TEST_F(CertificateExceptionsTest, AnExceptionCanBeReplacedAndRemoved) {
    CertificateExceptions first = store();
    first.add("c.d", one);
    first.add("a.b", one);
    first.add("a.b", two);
    EXPECT_THAT(store().list(), ElementsAre(Exception{"a.b", two}, Exception{"c.d", one}));
    EXPECT_TRUE(first.remove("a.b"));
    EXPECT_FALSE(store().accepts("a.b", two));
    EXPECT_TRUE(store().accepts("c.d", one));
}

TEST_F(CertificateExceptionsTest, WhatTheEngineAcceptsIsKnownUntilTheEnd) {
    CertificateExceptions first = store();
    first.add("a.b", one);
    EXPECT_FALSE(first.isAcceptedByEngine("a.b")) << "the host may have a better one meanwhile";
    first.engineAccepts("a.b");
    first.remove("a.b");
    EXPECT_TRUE(first.isAcceptedByEngine("a.b")) << "it forgets none";
    EXPECT_FALSE(first.isAcceptedByEngine("x.a.b"));
    EXPECT_FALSE(store().isAcceptedByEngine("a.b"));
}

TEST_F(CertificateExceptionsTest, ADamagedFileHasNoExceptionsAndIsKept) {
    write(file(), "{\"certificates\":[]}");
    CertificateExceptions damaged = store();
    EXPECT_NE(damaged.problem(), "");
    EXPECT_THAT(damaged.list(), IsEmpty());
    EXPECT_TRUE(damaged.add("a.b", one));
    EXPECT_EQ(read(file() + ".damaged-1"), "{\"certificates\":[]}");
    write(file(), R"({"certificates":{"a.b":"","c.d":")" + one + R"(","e.f":"ABC"}})");
    EXPECT_THAT(store().list(), ElementsAre(Exception{"c.d", one}))
        << "others are not fingerprints";
}

TEST_F(CertificateExceptionsTest, EachFaultIsNamed) {
    EXPECT_THAT(certificateReasons({.isExpired = true}), HasSubstr("has expired"));
    EXPECT_THAT(certificateReasons({.isNotYetValid = true}), HasSubstr("not valid yet"));
    EXPECT_THAT(certificateReasons({.isOfOtherHost = true}), HasSubstr("another site"));
    EXPECT_THAT(certificateReasons({.isRevoked = true}), HasSubstr("revoked"));
    EXPECT_THAT(certificateReasons({.isInsecure = true}), HasSubstr("not secure"));
    EXPECT_THAT(certificateReasons({.isUntrusted = true, .isExpired = true}),
                AllOf(HasSubstr("trusted authority"), HasSubstr("has expired")));
    EXPECT_THAT(certificateReasons({}), HasSubstr("not valid"));
}

TEST_F(CertificateExceptionsTest, WhatIsRevokedOrUnknownCantBeAccepted) {
    EXPECT_TRUE(canBeExcepted({.isUntrusted = true}));
    EXPECT_TRUE(canBeExcepted({.isOfOtherHost = true, .isExpired = true}));
    EXPECT_FALSE(canBeExcepted({.isUntrusted = true, .isRevoked = true}));
    EXPECT_FALSE(canBeExcepted({.isInsecure = true}));
    EXPECT_FALSE(canBeExcepted({}));
}

TEST_F(CertificateExceptionsTest, DetailsAreCutAndHarmless) {
    const std::string text = certificateText({.subject = "CN=\u202eevil\nValid until: 2099",
                                              .issuer = std::string(10'000, 'x'),
                                              .fingerprint = one});
    EXPECT_THAT(text, AllOf(HasSubstr("Claims to be: CN=evilValid until: 2099\n"),
                            HasSubstr("SHA-256: " + one.substr(32) + "\n" + one.substr(32)),
                            Not(HasSubstr("Valid from"))));
    EXPECT_LT(text.size(), 600U);
}

} // namespace
} // namespace quorvel
