#include "views/PreferencesPresentation.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

TEST(PreferencesPresentation, LaunchAtLoginStatusReadsForTheUser) {
    struct Case {
        const char* name;
        int status;
        LaunchAtLoginPresentation expected;
    };
    const Case cases[] = {
        {"notRegistered", 0, {false, u"Launch at login is off"_s, StatusTextRole::secondary}},
        {"enabled", 1, {true, u"Launch at login is enabled"_s, StatusTextRole::secondary}},
        {"requiresApproval",
         2,
         {true, u"Launch at login is waiting for approval in System Settings"_s,
          StatusTextRole::orange}},
        {"notFound",
         3,
         {false, u"Launch-at-login service is not available for this app bundle"_s,
          StatusTextRole::secondary}},
        {"unknown 4",
         4,
         {false, u"Launch-at-login status is unavailable"_s, StatusTextRole::secondary}},
        {"unknown -1",
         -1,
         {false, u"Launch-at-login status is unavailable"_s, StatusTextRole::secondary}},
        {"unknown 4711",
         4711,
         {false, u"Launch-at-login status is unavailable"_s, StatusTextRole::secondary}},
    };
    for (const Case& c : cases) {
        const auto shown = launchAtLoginPresentation(static_cast<LaunchAtLoginStatus>(c.status));
        EXPECT_EQ(shown.switchOn, c.expected.switchOn) << c.name;
        EXPECT_EQ(shown.text, c.expected.text) << c.name;
        EXPECT_EQ(shown.role, c.expected.role) << c.name;
    }
}

TEST(PreferencesPresentation, DockDescriptionFollowsThePreference) {
    EXPECT_EQ(dockVisibilityDescription(true), u"The app appears in the Dock while running"_s);
    EXPECT_EQ(dockVisibilityDescription(false),
              u"The app runs as a menu bar utility and stays hidden from the Dock"_s);
}

} // namespace
} // namespace brenvik
