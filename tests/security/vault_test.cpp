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

TEST(VaultBeforeInitialize, RefusesEverythingAndClearThenInitializeStartsOpen)
{
    EXPECT_IN_FRESH_PROCESS({
        CHILD_CHECK(vault::isLocked());
        CHILD_CHECK(!vault::lock() && !vault::unlock("") && !vault::unlock("any"));
        CHILD_CHECK(!vault::storeCredential("k", "u", "s") && !vault::readCredential("k"));
        CHILD_CHECK(!vault::rotateCredentialKey("", "new") && !vault::removeCredential("k"));
        vault::clear();
        CHILD_CHECK(vault::isLocked());
        CHILD_CHECK(vault::initialize("") && !vault::isLocked());
    });
}

TEST(VaultSecrets, OpenOnlyWithTheKeyAndComeBackRepeatedOrCutToItsSizeOrEmptyUnderAnEmptyKey)
{
    ASSERT_TRUE(vault::initialize("abcd"));
    EXPECT_FALSE(vault::storeCredential("k", "u", "s")) << "locked";
    EXPECT_FALSE(vault::unlock("abc") || vault::unlock(""));
    ASSERT_TRUE(vault::unlock("abcd"));
    EXPECT_FALSE(vault::isLocked());
    for (auto const& [secret, readBack] : std::vector<std::pair<char const*, char const*>>{
             {"wxyz", "wxyz"}, {"xy", "xyxy"}, {"1234567", "1234"}}) {
        ASSERT_TRUE(vault::storeCredential("k", "bob", secret)); // the last one stored is kept
        EXPECT_EQ(secretOf("k"), readBack);
    }
    EXPECT_EQ(vault::readCredential("k")->user, "bob");

    ASSERT_TRUE(vault::initialize("")); // open, and with no entries
    EXPECT_FALSE(vault::readCredential("k"));
    EXPECT_FALSE(vault::storeCredential("", "u", "s") || vault::storeCredential("k", "", "s")
                 || vault::storeCredential("k", "u", ""));
    ASSERT_TRUE(vault::storeCredential("k", "ann", "secret"));
    ASSERT_TRUE(vault::storeCredential("a", "ann", "secret"));
    EXPECT_EQ(vault::readCredential("k")->user, "ann");
    EXPECT_EQ(secretOf("k"), "");

    ASSERT_TRUE(vault::lock()); // remove and clear work all the same
    EXPECT_FALSE(vault::readCredential("a"));
    EXPECT_TRUE(vault::removeCredential("k"));
    EXPECT_FALSE(vault::removeCredential("k"));
    vault::clear();
    ASSERT_TRUE(vault::unlock("any candidate"));
    EXPECT_FALSE(vault::readCredential("a"));
}

TEST(VaultRotation, ReKeysSecretsUnderTheSizeRuleIncludingToAndFromAnEmptyKeyAndRefusesAWrongOrLockedOne)
{
    ASSERT_TRUE(vault::initialize("abcd"));
    EXPECT_FALSE(vault::rotateCredentialKey("abcd", "wxyz")) << "locked";
    ASSERT_TRUE(vault::unlock("abcd"));
    ASSERT_TRUE(vault::storeCredential("k", "u", "wxyz"));
    EXPECT_FALSE(vault::rotateCredentialKey("wrong", "1234"));
    ASSERT_TRUE(vault::rotateCredentialKey("abcd", "12345678"));
    EXPECT_FALSE(vault::isLocked());
    EXPECT_EQ(secretOf("k"), "wxyzwxyz");
    ASSERT_TRUE(vault::rotateCredentialKey("12345678", "12"));
    EXPECT_EQ(secretOf("k"), "wx") << "a shorter key cuts stored secrets for good";

    // To the empty key: the old key combined with the stored value gives back the secret, and
    // combining the empty new key with it leaves the empty key: the secret is gone.
    ASSERT_TRUE(vault::rotateCredentialKey("12", ""));
    EXPECT_EQ(secretOf("k"), "");
    // From the empty key: the stored secret is empty, an empty pad returns the new key unchanged,
    // so the entry now holds the key itself and reads back as the key combined with itself.
    ASSERT_TRUE(vault::rotateCredentialKey("", "key"));
    EXPECT_EQ(secretOf("k"), std::string(3, '\0'));
}

} // namespace
