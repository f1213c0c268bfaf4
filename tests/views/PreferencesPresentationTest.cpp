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
         {true, u"Launch at login is waiting for approval by the desktop"_s,
          StatusTextRole::orange}},
        {3, {false, u"Launch at login is not available"_s, plain}},
        {4, {false, unavailable, plain}},
        {-1, {false, unavailable, plain}},
    };
    for (const auto& [status, expected] : cases) {
        const auto shown = launchAtLoginPresentation(static_cast<LaunchAtLoginStatus>(status));
        EXPECT_EQ(shown, expected) << status << ": " << qPrintable(shown.text);
    }
}

TEST(PreferencesPresentation, DockDescriptionFollowsThePreference) {
    EXPECT_EQ(dockVisibilityDescription(true), u"The app appears in the taskbar while running"_s);
    EXPECT_EQ(dockVisibilityDescription(false),
              u"The app runs in the tray and stays out of the taskbar"_s);
}

} // namespace
} // namespace brenvik
