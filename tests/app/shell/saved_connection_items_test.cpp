#include "app/saved_connection_items.hpp"
#include "support/started_shell.hpp"

#include <gtest/gtest.h>

namespace perchftp::test {
namespace {

TEST(SavedConnectionRows, ShowNameUserAndHostFourBlanksApartAndLeaveOutAMissingUser)
{
    storage::SiteProfile withUser = siteProfile("Work", "sftp", "files.example.org", 2222);
    withUser.user = "ana";
    storage::SiteProfile withoutUser = siteProfile("Mirror", "ftp", "mirror.example.org", 21);
    QStringList const rows = app::savedConnectionRowTexts(app::savedConnectionItems({withUser, withoutUser}));
    EXPECT_EQ(rows, (QStringList{"Work    ana    files.example.org", "Mirror    mirror.example.org"}));
}

TEST(SavedConnectionRows, TextThatIsNotUtf8GetsItsReplacement)
{
    storage::SiteProfile profile = siteProfile(std::string("bad\xff", 4), std::string("\xc3", 1), "h", 21);
    profile.id = 7;
    profile.user = std::string("\xfe", 1);
    app::SavedConnectionItem const item = app::savedConnectionItems({profile}).front();
    EXPECT_EQ(item.id, 7);
    EXPECT_EQ(item.name, "Saved Connection");
    EXPECT_EQ(item.protocol, "ftp");
    EXPECT_EQ(item.user, "");
    EXPECT_EQ(app::savedConnectionRowText(item), "Saved Connection    h");
}

} // namespace
} // namespace perchftp::test
