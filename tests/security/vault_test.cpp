#include "security/vault.hpp"
#include "support/fresh_process.hpp"

#include <gtest/gtest.h>

namespace {

namespace vault = perchftp::security;

std::string secretOf(std::string const& key)
{
    auto const credentials = vault::readCredential(key);
    return credentials ? credentials->secret : "<none>";
}

TEST(Vault, RefusesAllBeforeInitializeAndWhileLockedAndGivesSecretsBackAtTheKeysSize)
{
    EXPECT_IN_FRESH_PROCESS({
        CHILD_CHECK(vault::isLocked() && !vault::lock() && !vault::unlock(""));
        CHILD_CHECK(!vault::storeCredential("k", "u", "s") && !vault::rotateCredentialKey("", "new"));
    });
    ASSERT_TRUE(vault::initialize("abcd"));
    EXPECT_FALSE(vault::storeCredential("k", "u", "s") || vault::rotateCredentialKey("abcd", "w")) << "locked";
    EXPECT_FALSE(vault::unlock("abc") || vault::unlock(""));
    ASSERT_TRUE(vault::unlock("abcd"));
    for (auto const& [secret, readBack] : std::vector<std::pair<char const*, char const*>>{
             {"xy", "xyxy"}, {"1234567", "1234"}, {"wxyz", "wxyz"}}) {
        ASSERT_TRUE(vault::storeCredential("k", "bob", secret)); // the last one stored is kept
        EXPECT_EQ(secretOf("k"), readBack);
    }
    EXPECT_FALSE(vault::rotateCredentialKey("wrong", "1234"));
    ASSERT_TRUE(vault::rotateCredentialKey("abcd", "12345678"));
    EXPECT_EQ(secretOf("k"), "wxyzwxyz");
    ASSERT_TRUE(vault::rotateCredentialKey("12345678", "12"));
    EXPECT_EQ(secretOf("k"), "wx") << "a shorter key cuts stored secrets for good";

    // The key the program itself uses: open at once, and every secret reads back empty.
    ASSERT_TRUE(vault::initialize(""));
    EXPECT_FALSE(vault::readCredential("k")) << "initialize empties the cache";
    ASSERT_TRUE(vault::storeCredential("k", "ann", "secret"));
    EXPECT_EQ(vault::readCredential("k")->user + "|" + secretOf("k"), "ann|");
    ASSERT_TRUE(vault::lock());
    EXPECT_TRUE(vault::removeCredential("k") && vault::unlock("any")) << "removal works while locked";
    EXPECT_FALSE(vault::readCredential("k"));
}

} // namespace
