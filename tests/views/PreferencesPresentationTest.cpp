#include "views/PreferencesPresentation.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

TEST(PreferencesPresentation, LaunchAtLoginStatusReadsForTheUser) {
    const auto plain = StatusTextRole::secondary;
    const QString unavailable = u"Launch-at-login status is unavailable"_s;
    const std::pair<int, LaunchAtLoginPresentation> cases[] = {
        {0, {false, u"Launch at login is off"_s, plain}},
        {1, {true, u"Launch at login is enabled"_s, plain}},
        {2,
         {true, u"Launch at login is waiting for approval in System Settings"_s,
          StatusTextRole::orange}},
        {3, {false, u"Launch-at-login service is not available for this app bundle"_s, plain}},
        {4, {false, unavailable, plain}},
        {-1, {false, unavailable, plain}},
    };
    for (const auto& [status, expected] : cases) {
        const auto shown = launchAtLoginPresentation(static_cast<LaunchAtLoginStatus>(status));
        EXPECT_EQ(shown, expected) << status << ": " << qPrintable(shown.text);
    }
}

TEST(PreferencesPresentation, DockDescriptionFollowsThePreference) {
    EXPECT_EQ(dockVisibilityDescription(true), u"The app appears in the Dock while running"_s);
    EXPECT_EQ(dockVisibilityDescription(false),
              u"The app runs as a menu bar utility and stays hidden from the Dock"_s);
}

} // namespace
} // namespace brenvik
